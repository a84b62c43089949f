#pragma once

#include <memory>

class QCoreApplication;

// The application object of a test program. Tests of windows define it to make more than the usual
// one.
std::unique_ptr<QCoreApplication> MakeTestApplication(int& argc, char** argv);
