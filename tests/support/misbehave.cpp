// misbehave flood: prints numbered lines without end, one write each.

#include <unistd.h>

#include <string>

int main()
{
    for (long number = 0;; ++number) {
        const std::string line = "line " + std::to_string(number) + "\n";
        if (write(STDOUT_FILENO, line.data(), line.size()) < 0) {
            return 9;
        }
    }
}
