#include "bookkeeping/rowmove.h"

#include <gtest/gtest.h>

namespace zifora::bookkeeping {
using namespace shell;
namespace {

class RowMove : public ::testing::Test {
  protected:
    void SetUp() override {
        for (const char* title : {"A", "B", "C", "D"}) {
            auto group = core::Record::make(core::RecordClass::Group, {});
            group->set("title", core::Value::string(title));
            m_groups.push_back(group);
        }
        m_list.setContent(&m_groups);
    }
    std::string order() const {
        std::string out;
        for (const auto& g : m_groups)
            out += g->getText("title");
        return out;
    }
    std::string selectedTitle() const {
        return m_list.selected() ? m_list.selected()->getText("title") : "-";
    }
    DragRequest drag(std::vector<size_t> rows, std::optional<size_t> target) const {
        return DragRequest{"groups", std::move(rows), "groups", target, false};
    }

    core::RecordList m_groups;
    ListController m_list{"groupController"};
};

TEST_F(RowMove, TheTargetIsCorrectedByTheRowsMovedFromAboveIt) {
    // Dropped "above" the row after the end: the first row goes last.
    EXPECT_EQ(moveObjectsInArrangedObjects(m_list, {0}, 4), std::vector<size_t>{3});
    EXPECT_EQ(order(), "BCDA");
    // Dropped above row 0: the last row goes first.
    EXPECT_EQ(moveObjectsInArrangedObjects(m_list, {3}, 0), std::vector<size_t>{0});
    EXPECT_EQ(order(), "ABCD");
    // Dropped above row 3 (between C and D).
    EXPECT_EQ(moveObjectsInArrangedObjects(m_list, {0}, 3), std::vector<size_t>{2});
    EXPECT_EQ(order(), "BCAD");
}

TEST_F(RowMove, DroppingARowOnItsOwnPlaceChangesNothing) {
    for (size_t target : {1u, 2u}) {
        EXPECT_EQ(moveObjectsInArrangedObjects(m_list, {1}, target), std::vector<size_t>{1});
        EXPECT_EQ(order(), "ABCD");
    }
}

TEST_F(RowMove, SeveralRowsMoveAsOneRunInTheirOrder) {
    EXPECT_EQ(moveObjectsInArrangedObjects(m_list, {3, 0, 0}, 2), (std::vector<size_t>{1, 2}));
    EXPECT_EQ(order(), "BADC");
    // Rows that don't exist are ignored; a target past the end means the end.
    EXPECT_EQ(moveObjectsInArrangedObjects(m_list, {0, 17}, 99), std::vector<size_t>{3});
    EXPECT_EQ(order(), "ADCB");
    EXPECT_TRUE(moveObjectsInArrangedObjects(m_list, {4}, 0).empty());
    EXPECT_EQ(order(), "ADCB");
}

TEST_F(RowMove, AMoveSelectsTheMovedRecordAndADropWithoutRowGoesToTheEnd) {
    EXPECT_TRUE(acceptRowDrop(m_list, drag({1}, std::nullopt)));
    EXPECT_EQ(order(), "ACDB");
    EXPECT_EQ(selectedTitle(), "B");
    EXPECT_EQ(m_list.selectionIndex(), 3u);
}

TEST_F(RowMove, CopiesAndDropsFromOtherListsAreRefusedWithoutEffect) {
    m_list.setSelectionIndex(2);
    DragRequest copy = drag({0}, 3);
    copy.option = true;
    EXPECT_EQ(validateRowDrop(copy), DropOperation::Copy);
    EXPECT_FALSE(acceptRowDrop(m_list, copy));
    DragRequest foreign = drag({0}, 3);
    foreign.list = "accounts";
    EXPECT_EQ(validateRowDrop(foreign), DropOperation::Copy);
    EXPECT_FALSE(acceptRowDrop(m_list, foreign));
    EXPECT_EQ(order(), "ABCD");
    EXPECT_EQ(selectedTitle(), "C");
    EXPECT_FALSE(acceptRowDrop(m_list, drag({9}, 0))) << "no row to move";
}

TEST_F(RowMove, AListWithoutContentHasNothingToMove) {
    ListController empty("accountController");
    EXPECT_TRUE(moveObjectsInArrangedObjects(empty, {0}, 0).empty());
    EXPECT_FALSE(acceptRowDrop(empty, drag({0}, 0)));
}

} // namespace
} // namespace zifora::bookkeeping
