// docs/failures.md lists every failure that has a number, and no other.
#include "tests/readme/Page.h"

#include "support/messages.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

std::string Page() { return page::Text("failures.md"); }

/// The lines of its tables whose first cell is a number.
std::vector<page::Row> Rows(std::string const& text) {
    std::vector<page::Row> rows;
    for (page::Row const& row : page::Rows(text))
        if (!row.empty() && !row[0].empty() && std::isdigit(static_cast<unsigned char>(row[0][0]))) rows.push_back(row);
    return rows;
}

std::map<std::string, std::string> TableOfMessages() {
    std::map<std::string, std::string> texts;
    for (str::Message const& row : str::Messages())
        texts.emplace(std::to_string(row.id), "`" + str::as_cstring(std::wstring(row.text)) + "`");
    return texts;
}

TEST(FailuresPageTest, ListsEachMessageOnceWithItsText) {
    std::map<std::string, std::string> texts;
    for (page::Row const& cells : Rows(Page())) {
        ASSERT_GE(cells.size(), 2u);
        EXPECT_TRUE(texts.emplace(cells[0], cells[1]).second) << cells[0] << " is listed twice";
    }
    EXPECT_EQ(texts, TableOfMessages());
}

TEST(FailuresPageTest, SaysOfEachMessageWhoMakesItWhatItMeansAndWhatToDo) {
    for (page::Row const& cells : Rows(Page())) {
        ASSERT_EQ(cells.size(), 5u) << cells[0];
        EXPECT_NE(cells[2], "") << cells[0];
        EXPECT_NE(cells[3], "") << cells[0];
        EXPECT_NE(cells[4], "") << cells[0];
    }
}

TEST(FailuresPageTest, MentionsNoNumberThatIsNoMessage) {
    std::string const text = Page();
    std::set<std::string> known;
    for (auto const& row : TableOfMessages()) known.insert(row.first);
    std::set<std::string> mentioned;
    for (std::size_t i = 0; i < text.size();) {
        std::size_t const begin = i;
        while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i;
        if (i - begin == 5) mentioned.insert(text.substr(begin, 5));
        if (i == begin) ++i;
    }
    EXPECT_EQ(mentioned, known);
}

} // namespace
