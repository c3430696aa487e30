// docs/failures.md lists every failure that has a number, and no other.
#include "support/messages.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <cctype>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string Page() {
    std::ifstream file(ZO_FAILURES_PAGE, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// The cells of each line of a table whose first cell is a number.
std::vector<std::vector<std::string>> Rows(std::string const& page) {
    std::vector<std::vector<std::string>> rows;
    std::istringstream lines(page);
    for (std::string line; std::getline(lines, line);) {
        if (line.size() < 3 || line[0] != '|' || !std::isdigit(static_cast<unsigned char>(line[2]))) continue;
        std::vector<std::string> cells;
        std::istringstream rest(line.substr(1));
        for (std::string cell; std::getline(rest, cell, '|');) {
            std::size_t const begin = cell.find_first_not_of(' ');
            cells.push_back(begin == cell.npos ? "" : cell.substr(begin, cell.find_last_not_of(' ') + 1 - begin));
        }
        rows.push_back(cells);
    }
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
    for (std::vector<std::string> const& cells : Rows(Page())) {
        ASSERT_GE(cells.size(), 2u);
        EXPECT_TRUE(texts.emplace(cells[0], cells[1]).second) << cells[0] << " is listed twice";
    }
    EXPECT_EQ(texts, TableOfMessages());
}

TEST(FailuresPageTest, SaysOfEachMessageWhoMakesItWhatItMeansAndWhatToDo) {
    for (std::vector<std::string> const& cells : Rows(Page())) {
        ASSERT_EQ(cells.size(), 5u) << cells[0];
        EXPECT_NE(cells[2], "") << cells[0];
        EXPECT_NE(cells[3], "") << cells[0];
        EXPECT_NE(cells[4], "") << cells[0];
    }
}

TEST(FailuresPageTest, MentionsNoNumberThatIsNoMessage) {
    std::string const page = Page();
    std::set<std::string> known;
    for (auto const& [number, text] : TableOfMessages()) known.insert(number);
    std::set<std::string> mentioned;
    for (std::size_t i = 0; i < page.size();) {
        std::size_t const begin = i;
        while (i < page.size() && std::isdigit(static_cast<unsigned char>(page[i]))) ++i;
        if (i - begin == 5) mentioned.insert(page.substr(begin, 5));
        if (i == begin) ++i;
    }
    EXPECT_EQ(mentioned, known);
}

} // namespace
