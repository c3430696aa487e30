// The tables of labels and rules, as they stand in slope.table.xml and slope.table.de.xml. The build puts their bytes
// into the program.
#pragma once

#include <string_view>

namespace slope {

std::string_view EnglishTable();
std::string_view GermanTable();

} // namespace slope
