# Writes the bytes of a file as a C++ array, so that the program needs no file at run time.
#   cmake -DINPUT=... -DOUTPUT=... -DNAME=... -P Embed.cmake
file(READ ${INPUT} bytes HEX)
string(LENGTH "${bytes}" length)
math(EXPR length "${length} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
file(WRITE ${OUTPUT} "// Made from a file by Embed.cmake.
#include \"examples/slope/TableText.h\"

namespace slope {

namespace {

constexpr char bytes[] = {${bytes}};

} // namespace

std::string_view ${NAME}() { return {bytes, ${length}}; }

} // namespace slope
")
