// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How a record spreads through a group, and where it ends.
#include "logic/records/Synchronizer.h"
#include "logic/records/ViewportData.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <optional>

namespace {

class View : public AbstractObserver<ViewportData> {
public:
    void virtualNotify() override
    {
        ++notified;
        if (answer)
            answer();
    }
    int notified = 0;
    std::function<void()> answer;
};

ViewportData at(double x) { return ViewportData(x, 0, 0, 0, 0); }

class Group : public testing::Test {
protected:
    Group()
    {
        for (View* view : {&a, &b, &c})
            view->join(group);
    }
    Synchronizer<ViewportData> group;
    View a, b, c;
};

TEST_F(Group, ChangeReachesTheOthersOnce)
{
    a.spread(at(5));
    EXPECT_EQ(a.notified, 0);
    EXPECT_EQ(b.notified, 1);
    EXPECT_EQ(c.notified, 1);
    EXPECT_EQ(c.data().offsetX, 5);
    a.spread(at(5));
    a.spread(at(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ(b.notified, 1) << "an equal record goes no further";
    EXPECT_EQ(b.data().offsetX, 5);
}

TEST_F(Group, AnswerWithTheSameValueEndsThere)
{
    b.answer = [this] { b.spread(b.data()); };
    c.answer = [this] { c.spread(c.data()); };
    a.spread(at(5));
    EXPECT_EQ(a.notified + b.notified + c.notified, 2);
}

TEST_F(Group, AnswerWithAnotherValueWinsEverywhere)
{
    b.answer = [this] {
        if (b.data().offsetX == 5)
            b.spread(at(6));
    };
    a.spread(at(5));
    for (const View* view : {&a, &b, &c})
        EXPECT_EQ(view->data().offsetX, 6);
    EXPECT_EQ(group.data().offsetX, 6);
}

TEST_F(Group, DisabledGroupStoresInSilenceAndCatchesUp)
{
    group.setEnabled(false);
    a.spread(at(5));
    c.spread(at(7));
    EXPECT_EQ(b.notified, 0);
    group.setEnabled(false);
    EXPECT_EQ(b.notified, 0);
    group.setEnabled(true);
    EXPECT_EQ(a.data().offsetX, 7);
    EXPECT_EQ(b.data().offsetX, 7);
    EXPECT_EQ(c.notified, 0) << "the one that set it knows it";
    group.setEnabled(true);
    EXPECT_EQ(b.notified, 1);
}

TEST_F(Group, SecondAttachDoesNothing)
{
    group.attach(b);
    a.spread(at(5));
    EXPECT_EQ(b.notified, 1);
    EXPECT_TRUE(group.detach(b));
    EXPECT_FALSE(group.detach(b));
    a.spread(at(6));
    EXPECT_EQ(b.notified, 1);
}

TEST_F(Group, MemberThatLeavesDuringAPassIsLeftAlone)
{
    // Whichever of the two comes first takes the other one out.
    b.answer = [this] { group.detach(c); };
    c.answer = [this] { group.detach(b); };
    a.spread(at(5));
    EXPECT_EQ(b.notified + c.notified, 1);
}

TEST(GroupThatEnds, NotifiesNobodyFurther)
{
    using Synchronizer = Synchronizer<ViewportData>;
    View members[3];
    // In the set's order: the second one's answer ends the group, and another one with a record of
    // its own, which takes its place in memory, has the third one as a member.
    std::optional<Synchronizer> group(std::in_place);
    for (View& view : members)
        view.join(*group);
    members[1].answer = [&] {
        group.emplace();
        group->setData(at(7));
        group->attach(members[2]);
    };
    members[0].spread(at(5));
    EXPECT_EQ(members[1].notified, 1);
    EXPECT_EQ(members[2].notified, 0);
}

TEST(Observer, WithoutGroupSpreadsNothing)
{
    View view;
    view.spread(at(5));
    EXPECT_EQ(view.data(), ViewportData());
}

TEST(ObserverDeathTest, NotifyWithoutGroupIsAProgrammingError)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(View().notify(), "src/logic/records/Synchronizer.*_synchronizer");
}

}  // namespace
