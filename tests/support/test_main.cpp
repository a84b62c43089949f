#include <gtest/gtest.h>

#include <QCoreApplication>

#include <signal.h>

#include <thread>

// A Qt warning is a fault of ours.
static void FailOnWarning(QtMsgType type, const QMessageLogContext& /*context*/,
                          const QString& message)
{
    if (type != QtDebugMsg && type != QtInfoMsg) {
        ADD_FAILURE() << "Qt says: " << message.toStdString();
    }
}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) {
        return RUN_ALL_TESTS();
    }
    signal(SIGPIPE, SIG_IGN);
    qInstallMessageHandler(FailOnWarning);
    // A sanitizer starts a thread of its own with the first one, which is not a leak.
    std::thread([] {}).join();
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
