#include "Common/ZOUtil/NamePath.h"
#include "Common/model/NodeTables.h"
#include "Common/model/ZOArray.h"

#include "support/text.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace zo {

namespace tables = impl::tables;

namespace {

constexpr std::uint32_t noIndex = 0xFFFFFFFFu;

bool IsDigits(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool IsQuoted(std::string_view text) {
    return text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
}

} // namespace

impl::AssocKey impl::ParseAssocKey(std::string const& name, bool& isKey) {
    AssocKey key;
    std::string_view text = name;
    isKey = text.starts_with("At(");
    std::size_t const close = isKey ? text.find(IZO::chFuncClose) : text.npos;
    if (close == text.npos) return key;
    text = str::Trim(text.substr(3, close - 3));
    if (text.empty()) return key;
    if (IsDigits(text)) {
        std::size_t number = 0;
        if (!path::ParseIndex(text, number) || number > std::numeric_limits<std::uint32_t>::max()) return key;
        key.kind = AssocKey::Integer;
        key.integer = static_cast<std::uint32_t>(number);
        return key;
    }
    key.kind = AssocKey::Text;
    key.text = IsQuoted(text) ? text.substr(1, text.size() - 2) : text;
    return key;
}

H ZOAssocArrayWrapperBase::GetSubZO(std::string const& name) {
    bool isKey = false;
    impl::AssocKey const key = impl::ParseAssocKey(name, isKey);
    if (!isKey) return ZOArrayWrapper::GetSubZO(name);
    if (key.kind == impl::AssocKey::None || IsPrototype()) return {};
    std::uint32_t const index =
        key.kind == impl::AssocKey::Integer ? IndexFromKey(key.integer) : IndexFromKey(key.text);
    return index == noIndex ? H() : tables::FindElement(tables::OwnerOrCurrent(*this), this, index);
}

void ZOAssocArrayWrapperBase::OnRegistration(std::size_t regID) {
    ZOArrayWrapper::OnRegistration(regID);
    tables::MarkAssociative(regID);
}

} // namespace zo
