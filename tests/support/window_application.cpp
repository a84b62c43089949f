// For tests of windows, without a screen.
#include "test_application.h"
#include "wait.h"

#include <QApplication>

std::unique_ptr<QCoreApplication> MakeTestApplication(int& argc, char** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static const TemporaryFolder runtimeFolder;
    setenv("XDG_RUNTIME_DIR", runtimeFolder.path().c_str(), 0);
    return std::make_unique<QApplication>(argc, argv);
}
