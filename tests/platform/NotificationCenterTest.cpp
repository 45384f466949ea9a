// SPDX-License-Identifier: MIT
#include "platform/NotificationCenter.h"

#include <gtest/gtest.h>

namespace tarnwell::test
{

class NotificationCenterTest : public testing::Test
{
protected:
    /// Returns a handler that appends `name` to m_notes.
    NotificationCenter::Handler note(const std::string& name)
    {
        return [this, name](const Notification&) { m_notes.push_back(name); };
    }

    NotificationCenter m_center;
    std::vector<std::string> m_notes;
};

TEST_F(NotificationCenterTest, anObserverReceivesItsName)
{
    const auto observation = m_center.addObserver("FileAddedByDragAnadDrop", note("received"));
    m_center.post({"FileAddedByDragAnadDrop", nullptr, {}});
    EXPECT_EQ(m_notes, std::vector<std::string>{"received"});
}

TEST_F(NotificationCenterTest, anObserverReceivesNoOtherName)
{
    const auto observation = m_center.addObserver("FileAddedByDragAnadDrop", note("received"));
    for (const auto* name :
        {"FileAddedByDragAndDrop", "fileaddedbydraganaddrop", "", "FileAddedByDragAnadDrop "})
        m_center.post({name, nullptr, {}});
    EXPECT_TRUE(m_notes.empty());
}

TEST_F(NotificationCenterTest, anObserverReceivesSenderAndValues)
{
    Notification received;
    const auto observation = m_center.addObserver(
        "name", [&received](const Notification& notification) { received = notification; });
    const int sender = 0;
    m_center.post({"name", &sender, {{"key", std::string("value")}}});
    EXPECT_EQ(received.name, "name");
    EXPECT_EQ(received.sender, &sender);
    ASSERT_EQ(received.userInfo.size(), 1U);
    EXPECT_EQ(std::any_cast<std::string>(received.userInfo.at("key")), "value");
}

TEST_F(NotificationCenterTest, anObserverReceivesNotificationsOfEverySender)
{
    const auto observation = m_center.addObserver("name", note("received"));
    const int sender = 0;
    m_center.post({"name", &sender, {}});
    m_center.post({"name", nullptr, {}});
    EXPECT_EQ(m_notes.size(), 2U);
}

TEST_F(NotificationCenterTest, observersAreCalledInTheOrderInWhichTheyCame)
{
    const auto first = m_center.addObserver("name", note("first"));
    const auto second = m_center.addObserver("name", note("second"));
    const auto third = m_center.addObserver("name", note("third"));
    m_center.post({"name", nullptr, {}});
    EXPECT_EQ(m_notes, (std::vector<std::string>{"first", "second", "third"}));
}

TEST_F(NotificationCenterTest, observersAreCalledBeforeThePostReturns)
{
    const auto observation = m_center.addObserver("name", note("observer"));
    m_center.post({"name", nullptr, {}});
    m_notes.emplace_back("poster");
    EXPECT_EQ(m_notes, (std::vector<std::string>{"observer", "poster"}));
}

TEST_F(NotificationCenterTest, anObservationEndsWithItsToken)
{
    auto observation = m_center.addObserver("name", note("received"));
    observation.reset();
    m_center.post({"name", nullptr, {}});
    EXPECT_TRUE(m_notes.empty());
}

TEST_F(NotificationCenterTest, theEndOfOneObservationKeepsTheOthers)
{
    auto first = m_center.addObserver("name", note("first"));
    const auto second = m_center.addObserver("name", note("second"));
    first.reset();
    m_center.post({"name", nullptr, {}});
    EXPECT_EQ(m_notes, std::vector<std::string>{"second"});
}

// A hundred additions reallocate the list of observers during the loop over it.
TEST_F(NotificationCenterTest, observersAddedDuringAPostReceiveTheNextOneOnly)
{
    constexpr int addedCount = 100;
    std::vector<NotificationCenter::Observation> added;
    const auto first = m_center.addObserver("name", [&](const Notification&) {
        while (added.size() < addedCount)
            added.push_back(m_center.addObserver("name", note("added")));
    });
    const auto last = m_center.addObserver("name", note("last"));
    m_center.post({"name", nullptr, {}});
    EXPECT_EQ(m_notes, std::vector<std::string>{"last"});
    m_notes.clear();
    m_center.post({"name", nullptr, {}});
    std::vector<std::string> expected(addedCount, "added");
    expected.insert(expected.begin(), "last");
    EXPECT_EQ(m_notes, expected);
}

TEST_F(NotificationCenterTest, anObserverThatAnEarlierOneEndsIsNotCalled)
{
    NotificationCenter::Observation second;
    const auto first = m_center.addObserver("name", [&second](const Notification&) { second.reset(); });
    second = m_center.addObserver("name", note("second"));
    m_center.post({"name", nullptr, {}});
    EXPECT_TRUE(m_notes.empty());
}

TEST_F(NotificationCenterTest, anObserverMayEndItself)
{
    NotificationCenter::Observation observation;
    observation = m_center.addObserver("name", [&](const Notification&) {
        observation.reset();
        m_notes.emplace_back("once");
    });
    m_center.post({"name", nullptr, {}});
    m_center.post({"name", nullptr, {}});
    EXPECT_EQ(m_notes, std::vector<std::string>{"once"});
}

TEST_F(NotificationCenterTest, anObserverMayPost)
{
    const auto inner = m_center.addObserver("inner", note("inner"));
    const auto outer = m_center.addObserver("outer", [this](const Notification&) {
        m_center.post({"inner", nullptr, {}});
        m_notes.emplace_back("outer");
    });
    m_center.post({"outer", nullptr, {}});
    EXPECT_EQ(m_notes, (std::vector<std::string>{"inner", "outer"}));
}

TEST_F(NotificationCenterTest, aCentreReceivesNothingFromAnother)
{
    NotificationCenter other;
    const auto observation = other.addObserver("name", note("received"));
    m_center.post({"name", nullptr, {}});
    EXPECT_TRUE(m_notes.empty());
}

TEST_F(NotificationCenterTest, theDefaultCentreIsOne)
{
    const auto observation = NotificationCenter::defaultCenter().addObserver("name", note("received"));
    NotificationCenter::defaultCenter().post({"name", nullptr, {}});
    EXPECT_EQ(m_notes.size(), 1U);
}

} // namespace tarnwell::test
