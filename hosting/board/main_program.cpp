#include "main_program.h"

std::vector<std::string> RunMainCommand()
{
    // The tool resets the board first. After this reset the board runs boot.py only.
    return {"exec", "try:\n open('main.py').close()\nexcept OSError:\n print('" +
                        std::string(kNoMainProgram) + "')\nelse:\n execfile('main.py')"};
}
