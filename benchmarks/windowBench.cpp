// SPDX-License-Identifier: MIT
// Measures one section of the benchmark in the real window with the real tools.
//
//   windowBench SECTION FOLDER [--quick]
//
// FOLDER holds the clips that benchmarks/make-clips creates for the section. The report is written there. The
// exit status is 1 if a figure is over its budget, 2 if one could not be measured.
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
    const std::map<std::string, std::function<void(const BenchContext&)>> sections = {
        {"open", measureOpening},
        {"click", measureClicks},
        {"export", measureExports},
        {"sharing", measureSharing},
        {"memory", measureMemory},
        {"mainThread", measureMainThread},
    };
    const auto section = argc > 2 ? sections.find(argv[1]) : sections.end();
    if (section == sections.end())
        exitWithError("windowBench needs a section and a folder");
    Report report(argv[2]);
    section->second({report, argv[2], argc > 3 && std::string(argv[3]) == "--quick"});
    // A failed expectation of the window test functions, which have printed it.
    if (testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed())
        exitWithError("an expectation on the window failed");
    return report.isOverBudget() ? 1 : 0;
}
