#include "progress.h"

#include <sstream>

std::optional<Progress> TakeProgress(std::string& report)
{
    const auto end = report.rfind('\n') + 1;
    std::istringstream lines(report.substr(0, end));
    report.erase(0, end);
    std::optional<Progress> last;
    for (std::string line; std::getline(lines, line);) {
        Progress progress;
        if (std::istringstream(line) >> progress.done >> progress.total && progress.total > 0) {
            last = progress;
        }
    }
    return last;
}
