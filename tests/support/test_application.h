#pragma once

#include <memory>

class QCoreApplication;

// Creates the application object of a test program. Tests of windows override it.
std::unique_ptr<QCoreApplication> MakeTestApplication(int& argc, char** argv);
