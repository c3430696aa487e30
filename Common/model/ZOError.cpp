#include "Common/model/IZO.h"

namespace zo::ZOError {

htl::status array_memory_conflict() { return htl::status(21654); }

htl::status duplicate_name() { return htl::status(21655); }

htl::status file_assign(std::wstring const& name, std::wstring const& value, htl::status const& cause) {
    return htl::status(21656, name, value, cause.AsWString());
}

htl::status file_invalid_element_attribute(std::wstring const& element, std::wstring const& attribute,
                                           std::wstring const& value) {
    return htl::status(21658, element, attribute, value);
}

htl::status invalid_name(std::string const& name) { return htl::status(21659, name); }

htl::status not_found(std::string const& name) { return htl::status(21660, name); }

htl::status not_supported(std::string const& what) { return htl::status(21661, what); }

htl::status out_of_bounds(int value, int lowest, int highest) { return htl::status(21662, value, lowest, highest); }

htl::status not_recognized(std::wstring const& text) { return htl::status(21663, text); }

htl::status not_visible(std::wstring const& text) { return htl::status(29130, text); }

} // namespace zo::ZOError
