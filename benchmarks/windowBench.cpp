// SPDX-License-Identifier: MIT
// What the user waits for in the real window, with the real tools, beside the bare work.
//
//   windowBench SECTION FOLDER [--quick]
//
// FOLDER holds the clips that benchmarks/make-clips makes for the section, and gets the rows of the report.
// The exit status is 1 when a figure is over its budget, 2 when one could not be measured.
#include "benchmarks/Sections.h"
#include "platform/StandardStreams.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <functional>
#include <map>

int main(int argc, char* argv[])
{
    using namespace tarnwell;
    using namespace tarnwell::bench;
    prepareStandardStreams();
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    const std::map<std::string, std::function<void(const Setting&)>> sections = {
        {"open", measureOpening},
        {"click", measureClicks},
        {"export", measureExports},
        {"memory", measureMemory},
        {"mainThread", measureMainThread},
    };
    const auto section = argc > 2 ? sections.find(argv[1]) : sections.end();
    if (section == sections.end())
        giveUp("windowBench needs a section and a folder");
    Report report(argv[2]);
    section->second({report, argv[2], argc > 3 && std::string(argv[3]) == "--quick"});
    // What the means of the window's tests found wrong; they said it themselves.
    if (testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed())
        giveUp("the window did not do what it should");
    return report.isOverBudget() ? 1 : 0;
}
