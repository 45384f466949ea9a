// SPDX-License-Identifier: MIT
#include "platform/StandardStreams.h"
#include "tests/support/TimeLimit.h"

#include <QApplication>
#include <QFileInfo>
#include <QStringList>

#include <gtest/gtest.h>

#include <climits>
#include <iostream>
#include <memory>
#include <string>
#include <unistd.h>

namespace
{

constexpr std::chrono::seconds longestTest(300);

/// Prints the name of a test that exceeds the time limit; ctest prints only that of the program.
class TimeLimitListener : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo& test) override
    {
        tarnwell::test::startTimeLimit(longestTest,
            std::string(test.test_suite_name()) + "." + test.name() + " did not end within "
                + std::to_string(longestTest.count()) + " s");
    }

    void OnTestEnd(const testing::TestInfo& /*test*/) override { tarnwell::test::stopTimeLimit(); }
};

/// Throws after a fatal failure, so that a failure in a helper function ends the test and not only the
/// function. Must be the last listener.
class FatalFailureListener : public testing::EmptyTestEventListener
{
    void OnTestPartResult(const testing::TestPartResult& result) override
    {
        if (result.type() == testing::TestPartResult::kFatalFailure)
            throw testing::AssertionException(result);
    }
};

/// The test filter for the tests in the source files with these names.
std::string testsIn(const QStringList& names)
{
    std::string filter;
    const testing::UnitTest& program = *testing::UnitTest::GetInstance();
    for (int i = 0; i < program.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *program.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            const testing::TestInfo& test = *suite.GetTestInfo(j);
            if (names.contains(QFileInfo(QString::fromUtf8(test.file())).fileName()))
                filter += std::string(suite.name()) + "." + test.name() + ":";
        }
    }
    return filter;
}

/// Applies the argument `--sources=NAME,…` if there is no filter: the programs that a death test starts have
/// both. Returns false if these sources have no test.
bool selectTests(const QStringList& arguments)
{
    const QString option = QStringLiteral("--sources=");
    for (const QString& argument : arguments) {
        if (argument.startsWith(option) && GTEST_FLAG_GET(filter) == "*")
            GTEST_FLAG_SET(filter, testsIn(argument.mid(option.size()).split(u',')));
    }
    return !GTEST_FLAG_GET(filter).empty();
}

} // namespace

int main(int argc, char* argv[])
{
    // A death test waits until no process has its pipe open: child processes must not inherit it.
    ::close_range(STDERR_FILENO + 1, UINT_MAX, CLOSE_RANGE_CLOEXEC);
    tarnwell::prepareStandardStreams();
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    if (!selectTests(QCoreApplication::arguments())) {
        std::cerr << "These sources have no test.\n";
        return 1;
    }
    // Death tests restart this program, because the connection to the X server does not survive a fork.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto& listeners = testing::UnitTest::GetInstance()->listeners();
    listeners.Append(std::make_unique<TimeLimitListener>().release());
    listeners.Append(std::make_unique<FatalFailureListener>().release());
    return RUN_ALL_TESTS();
}
