#include <gtest/gtest.h>

#include "test_application.h"

#include <QCoreApplication>

#include <signal.h>

#include <thread>

// A Qt warning is an error in this program.
static void FailOnWarning(QtMsgType type, const QMessageLogContext& /*context*/,
                          const QString& message)
{
    const bool isOfThePlatform = message.startsWith("This plugin does not support");
    if (!isOfThePlatform && type != QtDebugMsg && type != QtInfoMsg) {
        ADD_FAILURE() << "Qt warning: " << message.toStdString();
    }
}

[[gnu::weak]] std::unique_ptr<QCoreApplication> MakeTestApplication(int& argc, char** argv)
{
    return std::make_unique<QCoreApplication>(argc, argv);
}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) {
        return RUN_ALL_TESTS();
    }
    signal(SIGPIPE, SIG_IGN);
    qInstallMessageHandler(FailOnWarning);
    // A sanitizer starts a helper thread with the first thread, which is not a leak.
    std::thread([] {}).join();
    const auto application = MakeTestApplication(argc, argv);
    return RUN_ALL_TESTS();
}
