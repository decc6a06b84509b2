// SPDX-License-Identifier: GPL-3.0-or-later
//
// Exceptions from slots, in the application that the workbench runs in.
#include "host/session/plugin_loader.h"
#include "host/workbench/application.h"
#include "tests/host/support/listened_session.h"

#include <QEvent>
#include <QTimer>
#include <gmock/gmock.h>
#include <stdexcept>

namespace corvane
{

namespace
{

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

class ApplicationTest : public testing::Test, protected ListenedSession
{
};

/// Deletes itself at its first event, and throws.
class Doomed : public QObject
{
public:
    bool event(QEvent *) override
    {
        delete this;
        throw std::runtime_error("deleted");
    }
};

} // namespace

TEST_F(ApplicationTest, GoesOnAfterAnExceptionFromASlot)
{
    bool wentOn = false;
    QTimer::singleShot(0, [] { throw std::out_of_range("index 7 of 3"); });
    QTimer::singleShot(0, [] { throw 7; });
    QTimer::singleShot(0, [&] {
        wentOn = true;
        QCoreApplication::quit();
    });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_TRUE(wentOn);
    EXPECT_THAT(log, ElementsAre(AllOf(HasSubstr("index 7 of 3"), HasSubstr("goes on")),
                                 HasSubstr("an error that does not say what it is")));
}

TEST_F(ApplicationTest, TellsACommandOnceOfWhatItHasCaught)
{
    auto &application = *static_cast<Application *>(QCoreApplication::instance());
    QEvent event(QEvent::User);
    EXPECT_FALSE(QCoreApplication::sendEvent(new Doomed, &event));
    EXPECT_THROW(application.throwCaught(), std::runtime_error);
    EXPECT_NO_THROW(application.throwCaught());
}

TEST_F(ApplicationTest, NamesTheReceiverAlsoWhenItIsGone)
{
    QEvent event(QEvent::User);
    EXPECT_FALSE(QCoreApplication::sendEvent(new Doomed, &event));
    EXPECT_THAT(log, ElementsAre(HasSubstr("in QObject: deleted")));
}

TEST_F(ApplicationTest, GoesOnAfterAnExceptionFromASlotOfAPlugin)
{
    const auto plugins = loadPlugins(QStringLiteral(THROWING_FOLDER));
    ASSERT_EQ(plugins.size(), 1u);
    for (int start = 0; start < 2; ++start) {
        log.clear();
        plugins.front()->start();
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        EXPECT_EQ(QCoreApplication::exec(), 0);
        EXPECT_THAT(log, ElementsAre(AllOf(HasSubstr("a slot gave up"), HasSubstr("goes on"))));
    }
}

} // namespace corvane

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) // without the leaks of the platform
        return RUN_ALL_TESTS();
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const corvane::Application application(argc, argv);
    return RUN_ALL_TESTS();
}
