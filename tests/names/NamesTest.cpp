// The names that applications are built against, with their signatures.
//
// Renaming, removing or changing one does not compile here. The addresses are taken, so that what is declared and not
// exported does not link.
#include <zo/zo.h>

#include "support/diag.h"
#include "support/fmt.h"
#include "support/gid.h"
#include "support/handle.h"
#include "support/int64.h"
#include "support/locale.h"
#include "support/lock.h"
#include "support/messages.h"
#include "support/meta.h"
#include "support/number.h"
#include "support/status.h"
#include "support/text.h"
#include "support/typename.h"
#include "support/units.h"
#include "support/version.h"
#include "support/xml/XmlFile.h"
#include "support/xml/XmlTable.h"

#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <type_traits>

namespace {

using std::size_t;
using std::string;
using std::wstring;
using zo::H;
using zo::IZO;
using zo::ZOArray;
using zo::ZORegistry;
using zo::ZOSet;
template <class T>
using Handle = htl::handle<T, htl::handle_mgmt_refcounted>;
using htl::status;
using meta::MetaDataTraits;
using meta::MetaPersistTraits;

/// Whether a function or member is there with exactly this type. Its address is used, so it has to be linked.
template <class F>
bool Has(F* function) {
    return function != nullptr;
}
template <class F, class C>
bool Has(F C::*member) {
    return member != nullptr;
}

// ---- Handles, statuses and descriptors

static_assert(std::is_base_of_v<sys::thread::Affinity, htl::handle_ref_counter>);
static_assert(std::is_empty_v<sys::thread::Affinity>);
static_assert(std::is_same_v<htl::handle<IZO>, Handle<IZO>>);
static_assert(std::is_same_v<H, Handle<IZO>>);
static_assert(sizeof(H) == sizeof(void*));
static_assert(!std::is_convertible_v<IZO*, H>, "a temporary handle would delete a fresh node");
static_assert(!std::is_copy_constructible_v<htl::not_copyable>);
static_assert(sizeof(status) == sizeof(void*));
static_assert(std::is_base_of_v<std::exception, htl::status_exception>);
static_assert(std::is_same_v<decltype(status::detail::message), wstring>);
static_assert(std::is_constructible_v<status, unsigned>);
static_assert(std::is_constructible_v<status, unsigned, wstring, wstring, wstring, wstring, wstring>);
static_assert(std::is_same_v<__int64, long long> && std::is_same_v<unsigned __int64, htl::UInt64>);
static_assert(std::is_same_v<decltype(meta::bValidateRegistry), bool>);
static_assert(std::is_empty_v<meta::MetaIsMissingValueNotSupported> && std::is_empty_v<meta::MetaIsDefaultNever>);
static_assert(std::is_base_of_v<meta::MetaTraits, meta::MetaTraitsAtomic>);
static_assert(std::is_base_of_v<meta::MetaTraits, meta::MetaTraitsArray>);
static_assert(std::is_base_of_v<meta::MetaTraits, meta::MetaTraitsStructure>);
static_assert(unsigned(meta::Kind::Atomic) == 0 && unsigned(meta::Kind::Array) == 1);
static_assert(unsigned(meta::Kind::Structure) == 2 && unsigned(meta::Kind::Undefined) == 0xFFFFFFFFu);
static_assert(MetaPersistTraits::No == 0 && MetaPersistTraits::Always == 1 && MetaPersistTraits::IfNotDefined == 2);
static_assert(std::is_same_v<decltype(MetaPersistTraits::Type), std::uint32_t>);
static_assert(std::is_same_v<decltype(MetaPersistTraits::TagName), wstring>);
static_assert(std::is_same_v<decltype(MetaPersistTraits::Tag), wstring>);
static_assert(std::is_same_v<decltype(MetaPersistTraits::IsPersistedAsValue), bool>);
static_assert(std::is_same_v<decltype(MetaPersistTraits::IsAllChildrenValue), bool>);
static_assert(std::is_constructible_v<MetaPersistTraits, std::uint32_t, wstring>);
static_assert(std::is_same_v<std::underlying_type_t<DataParamType>, std::int32_t>);
static_assert(std::is_same_v<GID, std::uint32_t> && sizeof(GGID) == 8);
static_assert(std::is_convertible_v<hzn::diag::DeclareCategoryMask, int>);
static_assert(std::is_constructible_v<hzn::gid::ContainerRef, GGID const&, GID const&>);

template <class T, class S>
concept FormatsArgument = requires(str::fmt::arg<T> const argument, S& out, S const& token) {
    { argument.convert_to_text(out, token) } -> std::same_as<void>;
};
template <class... T>
constexpr bool formatAll = ((FormatsArgument<T, string> && FormatsArgument<T, wstring>)&&...);
static_assert(formatAll<char, wchar_t, char const*, wchar_t const*, short, int, __int64, unsigned short, unsigned,
                        double, void const*, bool>);

template <class T, class S>
concept WritesDigits = requires(S& out, T const& value) {
    math::impl::ConvertInt<T>::to_string(out, value, 10);
};
template <class T, class S>
concept ReadsDigits = requires(T& out, S const& text) {
    { math::impl::ConvertInt<T>::from_string(out, text) } -> std::same_as<void>;
};
static_assert(WritesDigits<int, wstring> && WritesDigits<unsigned, wstring> && WritesDigits<__int64, wstring> &&
              WritesDigits<unsigned __int64, wstring>);
static_assert(ReadsDigits<unsigned, wstring> && ReadsDigits<__int64, wstring> &&
              ReadsDigits<unsigned __int64, wstring>);
static_assert(requires(double& out, wstring const& text) { math::impl::ConvertFloat<double>::from_string(out, text); });

TEST(NamesTest, SupportIsThere) {
    EXPECT_TRUE(Has<bool(void const*)>(&meta::MetaTraitsTypes::RuleTrue));
    EXPECT_TRUE(Has<string() const>(&MetaDataTraits::TypeName));
    EXPECT_TRUE(Has<void(meta::TravAction const&, void*, void*) const>(&MetaDataTraits::DepthFirstTraversal_));
    EXPECT_TRUE(Has<wstring(wstring)>(&MetaPersistTraits::TagFromTagName));
    EXPECT_TRUE(Has<string const&(std::type_info const&)>(&meta::TypeName));
    EXPECT_TRUE(Has<wstring() const>(&status::detail::as_wstring));
    EXPECT_TRUE(Has<wstring() const>(&status::AsWString));
    EXPECT_TRUE(Has<bool(unsigned) const>(&status::Is));
    EXPECT_TRUE(Has<status(wstring const&)>(&status::FromText));
    EXPECT_FALSE(status::Success.IsError());
    EXPECT_TRUE(Has<status(status const&, std::vector<status> const&)>(&HznError::compound));
    EXPECT_TRUE(Has<status(char const*, char const*, unsigned)>(&HznError::internal));
    EXPECT_TRUE(Has<status(wstring const&)>(&HznError::syntax));
    EXPECT_TRUE(Has<status(wstring const&, wstring const&)>(&htl::Convert_error_status::InvalidCharStatus));
    EXPECT_TRUE(Has<status(wstring const&, wstring const&)>(&htl::Convert_error_status::OutOfRangeStatus));
    EXPECT_FALSE(htl::Convert_error_status::WholeNumberString().empty());
    EXPECT_FALSE(htl::Convert_error_status::FloatingPointString().empty());
}

TEST(NamesTest, TextIsThere) {
    EXPECT_TRUE(Has<wstring(string const&)>(&str::as_wstring));
    EXPECT_TRUE((Has<wstring(char const*, size_t)>(&str::as_wstring)));
    EXPECT_TRUE((Has<wstring(wchar_t const*, size_t)>(&str::as_wstring)));
    EXPECT_TRUE(Has<wstring(str::u8string const&)>(&str::as_wstring));
    EXPECT_TRUE(Has<wstring(hzn::version::NumberKind<0> const&)>(&str::as_wstring));
    EXPECT_TRUE(Has<wstring(hzn::version::NumberKind<1> const&)>(&str::as_wstring));
    EXPECT_TRUE(Has<string(wstring const&)>(&str::as_cstring));
    EXPECT_TRUE((Has<string(char const*, size_t)>(&str::as_cstring)));
    EXPECT_TRUE(Has<str::u8string(string const&)>(&str::as_u8string));
    EXPECT_TRUE((Has<status(wstring const&, hzn::version::NumberKind<1>&)>(&str::from_wstring)));
    EXPECT_TRUE((Has<status(wstring const&, size_t&)>(&str::from_wstring)));
    EXPECT_TRUE(Has<wstring(unsigned)>(&str::load_wstring));
    EXPECT_TRUE((Has<void(std::vector<string>&, string const&, string const&)>(&str::split<string>)));
    EXPECT_TRUE((Has<void(std::vector<wstring>&, wstring const&, wstring const&)>(&str::split<wstring>)));
    EXPECT_TRUE((Has<void(string&, std::vector<string> const&, string const&)>(&str::join<string>)));
    EXPECT_TRUE((Has<void(wstring&, std::vector<wstring> const&, wstring const&)>(&str::join<wstring>)));
    EXPECT_TRUE((Has<void(wstring&, wstring const&, wstring const&)>(&str::replace_all)));
    EXPECT_TRUE((Has<int(std::wstring_view, std::wstring_view)>(&str::CompareUtf16)));
    EXPECT_TRUE((Has<bool(string&, unsigned, string const&)>(&str::fmt::tokenize<string>)));
    EXPECT_TRUE((Has<bool(wstring&, unsigned, wstring const&)>(&str::fmt::tokenize<wstring>)));
    EXPECT_TRUE((Has<size_t(char*, size_t, char const*)>(&str::snprintf)));
    EXPECT_TRUE((Has<size_t(wchar_t*, size_t, wchar_t const*)>(&str::snprintf)));
    EXPECT_TRUE((Has<bool(string const&, bool)>(&htl::impl::is_integral_valid_from)));
    EXPECT_TRUE((Has<bool(wstring const&, bool)>(&htl::impl::is_integral_valid_from)));
    EXPECT_TRUE((Has<bool(string const&, bool)>(&htl::impl::is_float_valid_from)));
    EXPECT_TRUE((Has<bool(wstring const&, bool)>(&htl::impl::is_float_valid_from)));
    EXPECT_TRUE((Has<wstring(std::vector<wstring> const&, wstring const&)>(&GenerateUniqueDesriptionIgnoreCase)));
}

TEST(NamesTest, LocaleUnitsAndIdentifiersAreThere) {
    namespace locale = str::locale;
    EXPECT_TRUE(Has<locale::ID const&()>(&locale::native));
    EXPECT_TRUE((Has<bool(wchar_t, locale::ID const&)>(&locale::isdigit)));
    EXPECT_TRUE((Has<bool(wchar_t, locale::ID const&)>(&locale::isspace)));
    EXPECT_TRUE((Has<status(double&, size_t&, std::wstring_view, locale::ID const&)>(&locale::from_string)));
    EXPECT_TRUE((Has<status(wstring&, double, unsigned, unsigned, locale::floatformat::Type, locale::ID const&)>(
        &locale::to_string)));
    EXPECT_TRUE((Has<double(hzn::units::Kind::Type, double, math::UnitSet const&, math::UnitSet const&)>(
        &math::units::ConvertBetweenUnitSets)));
    EXPECT_TRUE(Has<math::UnitSet(math::unitsystem::Type)>(&hzn::units::SystemUnitSet));
    EXPECT_TRUE((Has<wstring(hzn::units::Kind::Type, math::UnitSet const&)>(&hzn::units::GetEngUnitValueString)));
    EXPECT_TRUE(Has<GGID() const>(&hzn::gid::ContainerRef::EnclosingRecordId));
    EXPECT_TRUE(Has<bool(GID const&)>(&hzn::gid::IsNestedContainerId));
    EXPECT_TRUE(Has<bool(GGID const&)>(&hzn::gid::IsContainerObjectId));
    EXPECT_TRUE((Has<GID(GGID const&, GID const&)>(&hzn::gid::PackedContainerGID)));
    EXPECT_TRUE(Has<hzn::version::Record const&()>(&hzn::version::Current));
    EXPECT_TRUE(Has<double(hzn::version::NumberKind<0> const&)>(&hzn::version::number::Encode));
    EXPECT_TRUE(Has<hzn::IEventSink*()>(&hzn::eventsink::Instance));
    EXPECT_TRUE((Has<bool(hzn::diag::Severity::Type, int)>(&hzn::diag::IsLogged)));
    EXPECT_TRUE(Has<bool(wstring const&)>(&hzn::feature::IsFeatureEnabled));
    EXPECT_TRUE(Has<void()>(&sys::thread::impl::ProcessExclusiveAccess::Lock));
    EXPECT_TRUE(Has<void()>(&sys::thread::impl::ProcessExclusiveAccess::Unlock));
}

// ---- Nodes

static_assert(std::is_base_of_v<htl::handle_ref_counter, IZO> && std::is_abstract_v<IZO>);
static_assert(IZO::chSeparator == '.' && IZO::chArrayOpen == '[' && IZO::chArrayClose == ']');
static_assert(IZO::chAttribute == ':' && IZO::chFuncOpen == '(' && IZO::chFuncClose == ')');
static_assert(IZO::chLink == '@' && IZO::chSub == '$' && IZO::npos == ~size_t(0));
static_assert(zo::SimpleTagType == 0 && zo::FullTagType == 1);
static_assert(std::is_same_v<decltype(zo::ZOFwrdIterator::current), H>);
static_assert(std::is_same_v<decltype(zo::ZOFwrdIterator::parent), H>);
static_assert(std::is_same_v<decltype(zo::ZOFwrdIterator::subID), size_t>);
static_assert(std::is_same_v<decltype(zo::ZOFwrdIterator::index), size_t>);
static_assert(!std::is_destructible_v<IZO>, "only handles end nodes");

TEST(NamesTest, NodesAreThere) {
    EXPECT_TRUE(Has<MetaDataTraits() const>(&IZO::GetDataTraits));
    EXPECT_TRUE(Has<bool() const>(&IZO::IsDefault));
    EXPECT_TRUE(Has<bool() const>(&IZO::IsUndefined));
    EXPECT_TRUE(Has<size_t() const>(&IZO::Length));
    EXPECT_TRUE(Has<status() const>(&IZO::Verify));
    EXPECT_TRUE(Has<MetaPersistTraits() const>(&IZO::GetPersistTraits));
    EXPECT_TRUE(Has<void()>(&IZO::Clear));
    EXPECT_NE(static_cast<status (IZO::*)(double const&)>(&IZO::Set), nullptr);
    EXPECT_NE(static_cast<status (IZO::*)(__int64 const&)>(&IZO::Set), nullptr);
    EXPECT_NE(static_cast<status (IZO::*)(bool const&)>(&IZO::Set), nullptr);
    EXPECT_NE(static_cast<status (IZO::*)(wstring const&)>(&IZO::Set), nullptr);
    EXPECT_TRUE(Has<status(double&)>(&IZO::Get));
    EXPECT_TRUE(Has<status(__int64&)>(&IZO::Get));
    EXPECT_TRUE(Has<status(bool&)>(&IZO::Get));
    EXPECT_TRUE(Has<status(wstring&)>(&IZO::Get));
    EXPECT_TRUE(Has<zo::ZOFwrdIterator()>(&IZO::begin));
    EXPECT_TRUE(Has<zo::ZOFwrdIterator()>(&IZO::end));
    EXPECT_TRUE(Has<status()>(&IZO::Run));
    EXPECT_TRUE(Has<IZO*()>(&IZO::Clone));
    EXPECT_TRUE(Has<IZO*()>(&IZO::EmptyClone));
    EXPECT_TRUE(Has<status(H const&)>(&IZO::Assign));
    EXPECT_TRUE(Has<ZOSet*() const>(&IZO::Owner));
    EXPECT_TRUE(Has<size_t() const>(&IZO::OwnerID));
    EXPECT_TRUE(Has<size_t() const>(&IZO::RegID));
    EXPECT_TRUE(Has<string() const>(&IZO::Name));
    EXPECT_TRUE(Has<string() const>(&IZO::SubName));
    EXPECT_TRUE(Has<string() const>(&IZO::ParentName));
    EXPECT_TRUE(Has<wstring() const>(&IZO::Tag));
    EXPECT_TRUE(Has<wstring(zo::TagType) const>(&IZO::TagName));
    EXPECT_TRUE(Has<int(IZO const&) const>(&IZO::CompareName));
    EXPECT_TRUE(Has<bool() const>(&IZO::IsValueType));
    EXPECT_TRUE(Has<status(size_t const&)>(&IZO::SetLength));
    EXPECT_TRUE(Has<status(H&)>(&IZO::PushBack));
    EXPECT_TRUE(Has<char const*(IZO::EventType)>(&IZO::EventName));
}

/// The protected operations, as a client's node class sees them.
class ClientNode : public IZO {
public:
    static bool IsWhole() {
        return Has<H(string const&)>(&ClientNode::GetSubZO) &&
               Has<status(zo::IZOAccessValueTypeTrait&)>(&ClientNode::CallValueTypeTrait) &&
               Has<void(size_t)>(&ClientNode::OnRegistration) && Has<void()>(&ClientNode::OnInvalidateMemory) &&
               Has<status(size_t const&)>(&ClientNode::Resize) &&
               Has<void(zo::ZOFwrdIterator&)>(&ClientNode::GetNextSubZO);
    }
};

TEST(NamesTest, ClientNodesSeeTheProtectedOperations) { EXPECT_TRUE(ClientNode::IsWhole()); }

TEST(NamesTest, FailuresAreThere) {
    namespace Error = zo::ZOError;
    EXPECT_TRUE(Has<status()>(&Error::array_memory_conflict));
    EXPECT_TRUE(Has<status()>(&Error::duplicate_name));
    EXPECT_TRUE((Has<status(wstring const&, wstring const&, status const&)>(&Error::file_assign)));
    EXPECT_TRUE((Has<status(wstring const&, wstring const&, wstring const&)>(&Error::file_invalid_element_attribute)));
    EXPECT_TRUE(Has<status(string const&)>(&Error::invalid_name));
    EXPECT_TRUE(Has<status(string const&)>(&Error::not_found));
    EXPECT_TRUE(Has<status(string const&)>(&Error::not_supported));
    EXPECT_TRUE((Has<status(int, int, int)>(&Error::out_of_bounds)));
    EXPECT_TRUE(Has<status(wstring const&)>(&Error::not_recognized));
    EXPECT_TRUE(Has<status(wstring const&)>(&Error::not_visible));
}

// ---- Values, wrappers and arrays

template <class T>
constexpr bool valueClasses =
    std::is_base_of_v<IZO, zo::ZOAtomicData<T>>&& std::is_base_of_v<zo::ZOAccessDataVMT<T>, zo::ZOAtomicData<T>>&&
        std::is_base_of_v<zo::IZOKind<T>, zo::ZOAtomicData<T>>&& std::is_base_of_v<zo::ZOAccessTraits,
                                                                                   zo::ZOAccessDataVMT<T>>&&
            std::is_base_of_v<zo::ZOAccessWrapperValueType<T>, zo::ZOWrapperAtomic<T>>&&
                std::is_base_of_v<zo::ZOWrapperAtomicCustom<T, T>, zo::ZOWrapperAtomic<T>>&& std::is_base_of_v<
                    zo::IZOSimple, zo::ZOWrapperAtomic<T>>&& std::is_base_of_v<zo::IZOKind<T>, zo::ZOWrapperAtomic<T>>&&
                    std::is_base_of_v<zo::ZOWrapperBase, zo::ZOAccessWrapperValueType<T>>;
static_assert(valueClasses<unsigned char> && valueClasses<int> && valueClasses<unsigned> && valueClasses<long> &&
              valueClasses<unsigned long> && valueClasses<float> && valueClasses<double> && valueClasses<__int64> &&
              valueClasses<unsigned __int64> && valueClasses<bool> && valueClasses<string> && valueClasses<wstring> &&
              valueClasses<DataParamType>);
static_assert(std::is_base_of_v<htl::not_copyable, zo::ZOAccessIsValidTrait>);
static_assert(std::is_base_of_v<zo::IZOAccessValueTypeTrait, zo::ZOAccessIsValidTrait>);
static_assert(std::is_base_of_v<zo::IZOAccessValueTypeTrait, zo::ZOAccessValueTypeTrait<bool>>);
static_assert(std::is_base_of_v<IZO, zo::ZOWrapperBase> && std::is_base_of_v<zo::IZOWrapper, zo::ZOWrapperBase>);
static_assert(std::is_base_of_v<zo::ZOWrapperBase, zo::ZOWrapperStruct> && std::is_base_of_v<IZO, zo::ZOStructClone>);
static_assert(std::is_base_of_v<ZOArray, zo::ZOArrayClone> && std::is_base_of_v<ZOArray, zo::ZOArrayWrapper>);
static_assert(std::is_base_of_v<zo::IZOWrapper, zo::ZOArrayWrapper>);
static_assert(std::is_base_of_v<zo::ZOArrayWrapper, zo::ZOAssocArrayWrapperBase>);
static_assert(std::is_base_of_v<zo::ZOMemMgr, zo::ZOArrayMemMgr>);

TEST(NamesTest, WrappersAndArraysAreThere) {
    EXPECT_TRUE((Has<IZO*(void*, Handle<zo::ZOMemMgr> const&)>(&zo::IZOWrapper::RemapClone)));
    EXPECT_TRUE(Has<zo::ZOMemMgr*(void*) const>(&zo::ZOMemMgr::RemapClone));
    EXPECT_TRUE((Has<H(size_t, void*)>(&zo::GetWrapper)));
    EXPECT_TRUE((Has<status(H&, size_t, void*, string const&)>(&zo::GetRegisteredWrapper)));
    EXPECT_TRUE((Has<H(void*, MetaDataTraits const&)>(&zo::GetAtomicWrapper)));
    EXPECT_TRUE((Has<status(void const*, void const*, bool, wstring&, bool&) const>(&zo::IZOSimple::FormatRange)));
    EXPECT_TRUE(Has<H(size_t const&)>(&ZOArray::GetSubZO));
    EXPECT_TRUE(Has<zo::ZOFwrdIterator()>(&ZOArray::AddNew));
    EXPECT_TRUE(Has<status(size_t const&)>(&ZOArray::RemoveAt));
    EXPECT_TRUE(Has<MetaDataTraits const&()>(&ZOArray::DefaultDataTraits));
    EXPECT_TRUE(Has<std::uint32_t(std::uint32_t) const>(&zo::ZOAssocArrayWrapperBase::IndexFromKey));
    EXPECT_TRUE(Has<std::uint32_t(string const&) const>(&zo::ZOAssocArrayWrapperBase::IndexFromKey));
    EXPECT_TRUE(Has<unsigned __int64(IZO const*) const>(&zo::ZOArrayLenPolicy::GetData));
    EXPECT_TRUE((Has<status(IZO*, unsigned __int64 const&) const>(&zo::ZOArrayLenPolicy::SetData)));
    EXPECT_TRUE(Has<status(void*)>(&zo::IZOAccessValueTypeTrait::CallValueTypeTrait));
    EXPECT_TRUE(Has<status(status const&)>(&zo::IZOAccessValueTypeTrait::ConvertUnitsInStatusToVisible));
    EXPECT_TRUE(Has<int() const>(&zo::IZOKind<int>::GetData));
    EXPECT_TRUE(Has<status(int const&)>(&zo::ZOAccessDataVMT<int>::SetData));
}

// ---- The registry

static_assert(std::is_base_of_v<htl::handle_ref_counter, ZOSet> && std::is_base_of_v<ZOSet, ZORegistry>);
static_assert(!std::is_copy_constructible_v<ZORegistry> && !std::is_destructible_v<ZORegistry>);
static_assert(std::is_base_of_v<IZO, ZORoot>);
static_assert(std::is_base_of_v<htl::handle_ref_counter, zo::IODS> && std::is_abstract_v<zo::IODS>);
static_assert(std::is_base_of_v<zo::IODS, zo::ODSName> && std::is_base_of_v<zo::IODS, zo::ODS>);
static_assert(std::is_base_of_v<zo::IODS, zo::ODSAccessor> && std::is_base_of_v<zo::IODS, zo::ODSFnAccessor>);
static_assert(std::is_constructible_v<zo::ODSName, string> && std::is_constructible_v<zo::ODSName, string, bool>);

TEST(NamesTest, RegistriesAreThere) {
    EXPECT_TRUE((Has<H(ZOArray*, size_t)>(&ZOSet::Find)));
    EXPECT_TRUE((Has<H(H const&, string const&)>(&ZOSet::Find)));
    EXPECT_TRUE(Has<H(string const&)>(&ZOSet::Find));
    EXPECT_TRUE((Has<H(string const&, int, int, int)>(&ZOSet::Find)));
    EXPECT_TRUE((Has<status(string const&, H const&)>(&ZOSet::Insert)));
    EXPECT_TRUE((Has<status(string const&, H const&)>(&ZOSet::InsertTemporary)));
    EXPECT_TRUE(Has<H(wstring const&)>(&ZOSet::FindTag));
    EXPECT_TRUE((Has<H(H const&, wstring const&)>(&ZOSet::FindTag)));
    EXPECT_TRUE((Has<string(string const&, int, int, int)>(&ZOSet::FormName)));
    EXPECT_TRUE(Has<ZOSet*() const>(&ZOSet::Source));
    EXPECT_TRUE(Has<ZORegistry*()>(&ZORegistry::Instance));
    EXPECT_TRUE(Has<ZORegistry*(ZORegistry*)>(&ZORegistry::SetInstance));
    EXPECT_TRUE(Has<string()>(&ZORegistry::RootName));
    EXPECT_TRUE((Has<void(Handle<zo::IODS> const&, H const&, MetaPersistTraits const&, MetaDataTraits const&)>(
        &ZORegistry::RegisterZO)));
    EXPECT_TRUE(Has<void()>(&ZORegistry::OnPostRegistration));
    EXPECT_TRUE(Has<bool() const>(&ZORegistry::InitializationComplete));
    EXPECT_TRUE(Has<H() const>(&ZORegistry::Root));
    EXPECT_TRUE(Has<void()>(&ZORegistry::Clear));
    EXPECT_TRUE(Has<void(string const&)>(&ZORegistry::InvalidateMemory));
    EXPECT_TRUE((Has<H(size_t, void*)>(&ZORegistry::Wrap)));
    EXPECT_TRUE(Has<bool(string&)>(&ZORegistry::NormalizeName));
    EXPECT_TRUE(Has<bool(wstring&)>(&ZORegistry::NormalizeTag));
    EXPECT_TRUE(Has<zo::ZORegistryIterator()>(&ZORegistry::begin));
    EXPECT_TRUE(Has<zo::ZORegistryIterator()>(&ZORegistry::end));
    EXPECT_TRUE((Has<void(std::type_info const&, H const&)>(&zo::ZOTypeTemplate::Register)));
    EXPECT_TRUE(Has<IZO*(std::type_info const&)>(&zo::ZOTypeTemplate::Lookup));
    EXPECT_TRUE(Has<bool() const>(&zo::IODS::IsActiveDataStore));
    EXPECT_TRUE(Has<bool() const>(&zo::IODS::IsAvailable));
    EXPECT_TRUE(Has<void*() const>(&zo::IODS::GetPtrType));
    EXPECT_TRUE(Has<string const&() const>(&zo::IODS::Name));
}

TEST(NamesTest, ColumnsAreThere) {
    EXPECT_TRUE(Has<MetaDataTraits const&(size_t)>(&zo::DataTraits));
    EXPECT_TRUE(Has<MetaDataTraits(string const&)>(&zo::DataTraits));
    EXPECT_TRUE(Has<MetaDataTraits(H const&)>(&zo::DataTraits));
    EXPECT_TRUE(Has<bool(size_t)>(&zo::IsDefinedDataTraits));
    EXPECT_TRUE(Has<IZO*(size_t)>(&zo::GetTemplate));
    EXPECT_TRUE(Has<IZO*(string const&)>(&zo::GetTemplate));
    EXPECT_TRUE(Has<string const&(size_t)>(&zo::RegNormalizedName));
    EXPECT_TRUE(Has<string const&(size_t)>(&zo::RegSubName));
    EXPECT_TRUE(Has<wstring const&(size_t)>(&zo::RegSubTag));
    EXPECT_TRUE(Has<size_t(size_t)>(&zo::SubRegID));
    EXPECT_TRUE(Has<size_t(size_t)>(&zo::NextRegID));
    EXPECT_TRUE((Has<size_t(size_t, string const&)>(&zo::SubRegID)));
    EXPECT_TRUE((Has<size_t(size_t, wstring const&)>(&zo::SubRegIDByTag)));
    EXPECT_TRUE((Has<void(std::type_info const&, MetaDataTraits const&)>(&zo::ValidateMetaData)));
}

TEST(NamesTest, LookupIsThere) {
    EXPECT_TRUE(Has<H(string const&)>(&zo::Find));
    EXPECT_TRUE((Has<H(string const&, int, int, int)>(&zo::Find)));
    EXPECT_TRUE((Has<H(H const&, string const&)>(&zo::Find)));
    EXPECT_TRUE((Has<H(ZOArray*, size_t)>(&zo::Find)));
    EXPECT_TRUE((Has<zo::ZOFwrdIterator(H const&, H const&)>(&zo::Find)));
    EXPECT_TRUE(Has<H(wstring const&)>(&zo::FindTag));
    EXPECT_TRUE(Has<H(string const&)>(&zo::FindTag));
    EXPECT_TRUE((Has<H(H const&, wstring const&)>(&zo::FindTag)));
    EXPECT_TRUE((Has<H(H const&, string const&)>(&zo::FindTag)));
    EXPECT_TRUE((Has<H(H const&, unsigned)>(&zo::GetParent)));
    EXPECT_TRUE((Has<H(H const&, string const&)>(&zo::GetSibling)));
    EXPECT_TRUE(Has<H(H const&)>(&zo::GetNameZO));
    EXPECT_TRUE(Has<H(H const&)>(&zo::GetIDZO));
    EXPECT_TRUE(Has<H(H const&)>(&zo::GetColorZO));
    EXPECT_TRUE((Has<H(H const&, wstring const&)>(&zo::LookupRelative)));
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::SimpleTag));
    EXPECT_TRUE(Has<wstring(string const&)>(&zo::SimpleTag));
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::FullTag));
    EXPECT_TRUE(Has<wstring(string const&)>(&zo::FullTag));
    EXPECT_TRUE(Has<wstring(wstring const&)>(&zo::SubTag));
    EXPECT_TRUE(Has<wstring(string const&)>(&zo::TagFromName));
    EXPECT_TRUE((Has<bool(string const&, string const&)>(&zo::IsMatching)));
}

// ---- Placeholders

using Six = int const (&)[6];
static_assert(std::is_base_of_v<IZO, zo::ZOPlaceholder>);
static_assert(std::is_base_of_v<zo::PlaceholderContext, zo::ZOPlaceholder>);
static_assert(std::is_base_of_v<ZOArray, zo::ZOPlaceholderArray>);
static_assert(std::is_base_of_v<zo::PlaceholderContext, zo::ZOPlaceholderArray>);
static_assert(std::is_base_of_v<IZO, zo::ZOParentPlaceholder>);
static_assert(std::has_virtual_destructor_v<zo::PlaceholderContext>);

/// Nodes end by handles only, so whether they can be made is asked of a `new`.
template <class T, class... A>
concept Makes = requires(A... arguments) {
    new T(arguments...);
};
static_assert(Makes<zo::ZOPlaceholder, size_t, ZOSet*, unsigned, Six, int const&>);
static_assert(Makes<zo::ZOPlaceholderArray, size_t, ZOSet*, size_t (*)(zo::ZOPlaceholderArray const*), unsigned, Six,
                    int const&>);
static_assert(Makes<zo::ZOParentPlaceholder, size_t, ZOSet*>);

TEST(NamesTest, PlaceholdersAreThere) {
    EXPECT_TRUE(Has<void()>(&zo::PlaceholderContext::InitializeContext));
    EXPECT_TRUE(Has<H(size_t const&)>(&zo::ZOPlaceholderArray::GetSubZO));
    EXPECT_TRUE(Has<void()>(&zo::ZOParentPlaceholder::Clear));
}

// ---- Transactions

using SetHandle = Handle<ZOSet>;
using TransactionHandle = Handle<zo::ZOTransaction>;
static_assert(std::is_base_of_v<ZOSet, zo::ZOTransaction> &&
              std::is_base_of_v<zo::ZOTransaction, zo::ZOEmptyTransaction>);
static_assert(std::is_constructible_v<zo::ZOTransaction, SetHandle const&, SetHandle const&, bool>);
static_assert(std::is_constructible_v<zo::ZOEmptyTransaction, SetHandle const&, bool>);
static_assert(!std::is_copy_constructible_v<zo::ZOTransaction>, "a copy's nodes would have two owners");
static_assert(std::is_copy_constructible_v<zo::ZOJournal> && std::is_nothrow_move_constructible_v<zo::ZOJournal>);
static_assert(std::is_same_v<decltype(zo::ZOJournal::Entry::name), string>);
static_assert(std::is_same_v<decltype(zo::ZOJournal::Entry::before), wstring>);
static_assert(std::is_same_v<decltype(zo::ZOJournal::Entry::after), wstring>);

TEST(NamesTest, TransactionsAreThere) {
    using zo::ZOEmptyTransaction;
    using zo::ZOJournal;
    using zo::ZOTransaction;
    EXPECT_TRUE(Has<TransactionHandle()>(&ZOSet::CreateTransaction));
    EXPECT_TRUE(Has<TransactionHandle()>(&ZOEmptyTransaction::CreateTransaction));
    EXPECT_TRUE(Has<ZOSet*() const noexcept>(&ZOSet::Base));
    EXPECT_TRUE((Has<H(ZOArray*, size_t)>(&ZOTransaction::Find)));
    EXPECT_TRUE((Has<H(H const&, string const&)>(&ZOTransaction::Find)));
    EXPECT_TRUE(Has<H(string const&)>(&ZOTransaction::Find));
    EXPECT_TRUE((Has<H(string const&, int, int, int)>(&ZOTransaction::Find)));
    EXPECT_TRUE((Has<H(ZOArray*, size_t)>(&ZOEmptyTransaction::Find)));
    EXPECT_TRUE((Has<H(H const&, string const&)>(&ZOEmptyTransaction::Find)));
    EXPECT_TRUE(Has<H(string const&)>(&ZOEmptyTransaction::Find));
    EXPECT_TRUE((Has<H(string const&, int, int, int)>(&ZOEmptyTransaction::Find)));
    EXPECT_TRUE((Has<status(string const&, H const&)>(&ZOTransaction::Insert)));
    EXPECT_TRUE((Has<status(string const&, H const&)>(&ZOTransaction::InsertTemporary)));
    EXPECT_TRUE((Has<status(string const&, string const&, ZOJournal*)>(&ZOTransaction::Commit)));
    EXPECT_TRUE((
        Has<status(string const&, string const&, string const&, string const&, ZOJournal*)>(&ZOTransaction::CommitAs)));
    EXPECT_TRUE(Has<void()>(&ZOTransaction::Rollback));
    EXPECT_TRUE(Has<void(string)>(&ZOJournal::Cover));
    EXPECT_TRUE(Has<std::vector<ZOJournal::Entry> const&() const noexcept>(&ZOJournal::Entries));
    EXPECT_TRUE(Has<bool() const noexcept>(&ZOJournal::IsEmpty));
    EXPECT_TRUE(Has<void()>(&ZOJournal::Clear));
    EXPECT_TRUE(Has<status(ZOSet&) const>(&ZOJournal::Undo));
    EXPECT_TRUE(Has<status(ZOSet&) const>(&ZOJournal::Redo));
}

TEST(NamesTest, ACommitNeedsNoJournal) {
    // The last argument has a default.
    Handle<ZORegistry> const registry(new ZORegistry);
    TransactionHandle const transaction = registry->CreateTransaction();
    EXPECT_FALSE(transaction->Commit("", "").IsError());
    EXPECT_FALSE(transaction->CommitAs("", "", "", "").IsError());
}

// ---- Aliases

static_assert(std::is_base_of_v<IZO, zo::ZOAliasBase> && std::is_base_of_v<zo::ZORedirect, zo::ZOAliasBase>);
static_assert(std::is_abstract_v<zo::ZOAliasBase> && Makes<zo::ZOAlias, string const&, size_t, ZOSet*>);
static_assert(std::is_base_of_v<zo::ZOAliasBase, zo::ZOAlias> && std::is_base_of_v<zo::ZOAlias, zo::ZOAliasAbsolute>);
static_assert(Makes<zo::ZOAliasAbsolute, string const&, size_t, ZOSet*>);
static_assert(std::is_base_of_v<zo::ZOAliasBase, zo::ZOAliasAbsoluteSlow> &&
              std::is_base_of_v<zo::ZOAliasBase, zo::ZOAliasRelative>);
static_assert(Makes<zo::ZOAliasAbsoluteSlow, wstring const&, size_t, ZOSet*>);
static_assert(Makes<zo::ZOAliasRelative, wstring const&, size_t, ZOSet*>);
using AliasPairs = std::vector<std::pair<string, string>>;
static_assert(Makes<zo::ZOAliasSet, wstring const&, AliasPairs const&, size_t, ZOSet*>);
static_assert(std::is_base_of_v<zo::ZOAlias, zo::ZOAssocByIDAlias> && std::is_abstract_v<zo::ZOAssocByIDAlias>);
static_assert(std::is_constructible_v<zo::ZOAliasRegistrator, H const&, Handle<zo::IODS> const&, MetaPersistTraits>);

TEST(NamesTest, AliasesAreThere) {
    EXPECT_TRUE(Has<H()>(&zo::ZOAliasBase::WriteRedirect));
    EXPECT_TRUE(Has<bool()>(&zo::ZOAliasBase::Validate));
    EXPECT_TRUE(Has<bool() const noexcept>(&zo::ZOAliasBase::IsAlias));
    EXPECT_TRUE(Has<H() const>(&zo::ZOAlias::Redirect));
    EXPECT_TRUE(Has<string() const>(&zo::ZOAlias::RedirectName));
    EXPECT_TRUE(Has<string const&() const noexcept>(&zo::ZOAlias::SrcName));
    EXPECT_TRUE(Has<H()>(&zo::ZOAliasAbsolute::WriteRedirect));
    EXPECT_TRUE(Has<IZO*()>(&zo::ZOAliasAbsoluteSlow::Clone));
    EXPECT_TRUE(Has<IZO*()>(&zo::ZOAliasRelative::Clone));
    EXPECT_TRUE(Has<zo::ZOFwrdIterator()>(&zo::ZOAliasSet::begin));
    EXPECT_TRUE(Has<std::uint32_t(std::uint32_t) const>(&zo::ZOAssocByIDAlias::IndexOfKey));
    EXPECT_TRUE((Has<H(string const&, string const&)>(&ZOSet::AssociateAlias)));
    EXPECT_TRUE((Has<H(string const&, AliasPairs const&)>(&ZOSet::AssociateAlias)));
}

// ---- Links and identity

static_assert(std::is_base_of_v<zo::ZORedirect, zo::ZOLink>);
static_assert(std::is_base_of_v<zo::ZOWrapperBase, zo::ZOWrapperLinkBase>);
static_assert(std::is_base_of_v<zo::ZOLink, zo::ZOWrapperLinkBase> && std::is_abstract_v<zo::ZOWrapperLinkBase>);
static_assert(std::is_abstract_v<zo::RecordNames>);
static_assert(int(zo::Link::AsStored) == 0 && int(zo::Link::Packed) == 1);

template <class T>
constexpr bool isLinkType = std::is_base_of_v<zo::ZOAccessLink<T>, zo::ZOWrapperLink<T>>&& std::is_base_of_v<
    zo::IZOKind<T>, zo::ZOWrapperLink<T>>&& Makes<zo::ZOWrapperLink<T>, size_t, ZOSet*, MetaDataTraits const&, void*,
                                                  Handle<zo::ZOMemMgr> const&, Handle<zo::RecordNames const> const&>;
static_assert(isLinkType<int> && isLinkType<unsigned> && isLinkType<long> && isLinkType<unsigned long> &&
              isLinkType<__int64> && isLinkType<unsigned __int64>);

TEST(NamesTest, LinksAreThere) {
    EXPECT_TRUE(Has<string(GGID const&, ZOSet&) const>(&zo::RecordNames::NameOf));
    EXPECT_TRUE(Has<zo::ZOFwrdIterator()>(&zo::ZOLink::LinkBegin));
    EXPECT_TRUE(Has<void(zo::ZOFwrdIterator&)>(&zo::ZOLink::LinkGetNextSubZO));
    EXPECT_TRUE(Has<H(string const&)>(&zo::ZOLink::LinkGetSubZO));
    EXPECT_TRUE(Has<zo::ZOFwrdIterator()>(&zo::ZOWrapperLinkBase::begin));
    EXPECT_TRUE(Has<string() const>(&zo::ZOAccessLink<int>::RedirectName));
    EXPECT_TRUE(Has<IZO*()>(&zo::ZOWrapperLink<__int64>::Clone));
}

TEST(NamesTest, IdentityIsThere) {
    EXPECT_TRUE(Has<bool(H const&)>(&zo::IsLinkField));
    EXPECT_TRUE(Has<bool(string const&)>(&zo::IsLinkField));
    EXPECT_TRUE((Has<GGID(H const&, zo::Link::Type)>(&zo::GetLink)));
    EXPECT_TRUE((Has<GGID(H const&, zo::Link::Type)>(&zo::GetRecordID)));
    EXPECT_TRUE((Has<status(H const&, GGID const&)>(&zo::SetLink)));
    EXPECT_TRUE((Has<H(H const&, unsigned)>(&zo::GetSource)));
    EXPECT_TRUE(Has<H(H const&)>(&zo::GetSource));
    EXPECT_TRUE((Has<H(ZOSet*, GGID const&)>(&zo::GetSource)));
    EXPECT_TRUE(Has<H(GGID const&)>(&zo::GetSource));
    EXPECT_TRUE((Has<H(ZOSet*, hzn::gid::ContainerRef)>(&zo::GetSource)));
    EXPECT_TRUE(Has<H(hzn::gid::ContainerRef)>(&zo::GetSource));
    EXPECT_TRUE((Has<H(GGID const&, wstring const&)>(&zo::LookupRelative)));
    EXPECT_TRUE(Has<GID(H const&)>(&zo::GetObjectIDByTag));
    EXPECT_TRUE((Has<status(H const&, GID const&)>(&zo::SetObjectIDByTag)));
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::GetObjectName));
    EXPECT_TRUE((Has<status(H const&, wstring const&)>(&zo::SetObjectName)));
    EXPECT_TRUE(Has<bool(H const&)>(&zo::IsID));
    EXPECT_TRUE((Has<status(Handle<zo::ZOTransaction> const&, GGID const&, GGID const&, string const&, string const&)>(
        &zo::CommitAs)));
}

// ---- Documents

namespace xml = zo::xml;
using Version = hzn::version::NumberKind<0>;
static_assert(std::is_same_v<xml::Filter, std::vector<std::pair<wstring, bool>>>);
static_assert(std::is_same_v<xml::Unknowns, std::vector<std::pair<wstring, wstring>>>);
static_assert(
    std::is_convertible_v<void (*)(ZOSet*, xml::Unknowns&, double, xml::impl::XMLError&), xml::UnknownHandler>);
static_assert(std::is_convertible_v<wstring (*)(wstring const&), xml::TagPolicy>);
static_assert(std::is_constructible_v<xml::impl::XMLError, unsigned>);
static_assert(std::is_constructible_v<xml::impl::ZOPersistEntry, H const&, xml::impl::ZOPersistEntry*>);
static_assert(std::is_copy_constructible_v<xml::impl::ZOPersistEntry> &&
              std::is_nothrow_move_constructible_v<xml::impl::ZOPersistEntry> &&
              std::is_copy_assignable_v<xml::impl::ZOPersistEntry> &&
              std::is_nothrow_move_assignable_v<xml::impl::ZOPersistEntry>);

TEST(NamesTest, DocumentsAreThere) {
    using Errors = std::vector<status>;
    EXPECT_TRUE(
        (Has<status(wstring const&, Errors&, xml::Filter const&, xml::UnknownHandler const&, xml::TagPolicy const&)>(
            &xml::FileRead)));
    EXPECT_TRUE((Has<status(wstring const&, Errors&, xml::Filter const&, ZOSet*, xml::UnknownHandler const&,
                            xml::TagPolicy const&)>(&xml::FileImport)));
    EXPECT_TRUE(
        (Has<status(wstring const&, Errors&, xml::Filter const&, xml::UnknownHandler const&, xml::TagPolicy const&)>(
            &xml::StringRead)));
    EXPECT_TRUE((Has<status(wstring const&, Errors&, xml::Filter const&, ZOSet*, xml::UnknownHandler const&,
                            xml::TagPolicy const&)>(&xml::StringImport)));
    EXPECT_TRUE((Has<status(wstring const&, Version const&)>(&xml::FileWrite)));
    EXPECT_TRUE((Has<status(wstring&, Version const&, size_t, std::vector<wstring> const*)>(&xml::StringWrite)));
    EXPECT_TRUE(Has<wstring(H const&)>(&xml::TransformForWriteFilterList));
    EXPECT_EQ(xml::rootattribute::AppVersion(), L"AppVersion");
    EXPECT_EQ(xml::rootattribute::FileVersion(), L"Version");
    EXPECT_TRUE((Has<bool(H const&, H const&)>(&zo::AreZOsIdenticalUsingPersistance)));
    EXPECT_TRUE(Has<void(wstring const&)>(&xml::RegisterFirstOrdering));
    EXPECT_TRUE((Has<void(wstring const&, wstring const&)>(&xml::RegisterPersistanceOrdering)));
    EXPECT_TRUE(Has<void(status const&)>(&xml::impl::XMLError::ReportError));
    EXPECT_TRUE(Has<std::vector<status> const&() const>(&xml::impl::XMLError::GetErrors));
    EXPECT_TRUE(Has<xml::UnknownHandler()>(&xml::impl::UnknownAreErrors));
    EXPECT_TRUE(Has<xml::TagPolicy()>(&xml::impl::UnknownTagIsMissing));
}

TEST(NamesTest, DocumentsInFilesAndInMemoryAreThere) {
    namespace file = sys::file;
    using Reader = Handle<file::XmlElemReader>;
    using Writer = Handle<file::XmlElemWriter>;
    using Bytes = std::vector<unsigned char>;
    EXPECT_TRUE((Has<status(wstring const&, Reader const&)>(&file::XmlFileRead)));
    EXPECT_TRUE((Has<status(Bytes const&, Reader const&)>(&file::XmlStringRead)));
    EXPECT_TRUE((Has<status(wstring const&, Writer const&)>(&file::XmlFileWrite)));
    EXPECT_TRUE((Has<status(Bytes&, Writer const&)>(&file::XmlStringWrite)));
    EXPECT_TRUE(Has<Reader(wstring const&)>(&file::XmlElemReader::Element));
    EXPECT_TRUE(Has<void(file::XmlAttribute const&)>(&file::XmlElemReader::Attribute));
    EXPECT_TRUE(Has<void(wstring const&)>(&file::XmlElemReader::Text));
    EXPECT_TRUE(Has<wstring()>(&file::XmlElemWriter::Tag));
    EXPECT_TRUE(Has<wstring()>(&file::XmlElemWriter::Text));
    EXPECT_TRUE(
        (Has<std::pair<file::XmlAttribute const*, file::XmlAttribute const*>()>(&file::XmlElemWriter::Attributes)));
    EXPECT_TRUE(Has<Writer()>(&file::XmlElemWriter::Next));
    EXPECT_TRUE(Has<Writer()>(&file::XmlElemWriter::FirstChild));
    EXPECT_TRUE(Has<bool()>(&file::XmlElemWriter::IsArrayEntry));
    static_assert(std::is_base_of_v<file::XmlElemReader, file::XmlArrayReader>);
    static_assert(std::is_base_of_v<file::XmlElemReader, file::XmlArrayElementReader>);
    static_assert(std::is_base_of_v<file::XmlArrayElementReader, file::XmlArrayElementDataTableReader>);
}

// ---- The table of labels and rules, the view, and what people read

using Kind = hzn::units::Kind::Type;
using Query = int;
using UnitSet = math::UnitSet;
namespace clip = zo::clip;
namespace view = zo::view;

static_assert(zo::style::header == 0 && zo::style::table == 1 && zo::style::text == 2);
static_assert(std::is_same_v<std::underlying_type_t<zo::style::Type>, std::int32_t>);
static_assert(std::is_same_v<std::underlying_type_t<hzn::apptype::Value>, int>);
static_assert(std::is_same_v<std::underlying_type_t<hzn::appmode::Value>, int>);
static_assert(std::is_same_v<zo::NameParts, std::pair<wstring, wstring>>);
static_assert(std::is_same_v<decltype(zo::ExtendedInfoEntry::Tag), wstring>);
static_assert(std::is_same_v<decltype(zo::ExtendedInfoEntry::IsDynamic), bool>);
static_assert(std::is_same_v<decltype(zo::ViewTravItem::SourceTag), wstring>);
static_assert(std::is_same_v<decltype(zo::ViewTravItem::RemoveFromSource), bool>);
static_assert(std::forward_iterator<view::impl::ZOFwrdViewIterator>);

TEST(NamesTest, TablesAreThere) {
    EXPECT_TRUE((Has<status(void const*, void const*)>(&zo::ZOExtendedInfoRead)));
    EXPECT_TRUE(Has<status(wstring const&)>(&zo::ZOExtendedInfoRead));
    EXPECT_TRUE(Has<status()>(&zo::CompileExtendedInfo));
    EXPECT_TRUE((Has<status(wstring const&, wstring const&)>(&zo::MergeExtendedInfoLocTextToFile)));
    EXPECT_TRUE((Has<bool(size_t, Query)>(&zo::IsVisible)));
    EXPECT_TRUE((Has<bool(H const&, Query)>(&zo::IsVisible)));
    EXPECT_TRUE(Has<bool(H const&)>(&zo::IsEditable));
    EXPECT_TRUE(Has<Query(hzn::apptype::Value)>(&zo::visible::Mask));
    EXPECT_TRUE(Has<Query(hzn::appmode::Value)>(&zo::visible::Mask));
}

TEST(NamesTest, TextsForPeopleAreThere) {
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::Label));
    EXPECT_TRUE(Has<wstring(string const&)>(&zo::Label));
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::LabelWithAccel));
    EXPECT_TRUE(Has<wstring(string const&)>(&zo::LabelWithAccel));
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::Description));
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::Category));
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::CustomView));
    EXPECT_TRUE(Has<zo::style::Type(H const&)>(&zo::Style));
    EXPECT_TRUE(Has<bool(H const&)>(&zo::IsDescription));
    EXPECT_TRUE(Has<bool(H const&)>(&zo::IsColor));
    EXPECT_TRUE(Has<bool(H const&)>(&zo::HasColor));
    EXPECT_TRUE(Has<H(H const&)>(&zo::GetColorZO));
    EXPECT_TRUE(Has<unsigned long(H const&)>(&zo::Color));
    EXPECT_TRUE(Has<bool(H const&)>(&zo::HasPrettyPrintValue));
    EXPECT_TRUE((Has<wstring(H const&, wchar_t)>(&zo::PrettyPrintName)));
    EXPECT_TRUE(Has<wstring(std::vector<zo::NameParts>)>(&zo::PrettyPrintNameFromParts));
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::PrettyPrintNameValue));
}

TEST(NamesTest, ValuesForPeopleAreThere) {
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::PrettyPrintValue));
    EXPECT_TRUE(Has<wstring(string const&)>(&zo::PrettyPrintValue));
    EXPECT_TRUE((Has<wstring(size_t, void const*)>(&zo::PrettyPrintValue)));
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::AbbrevValue));
    EXPECT_TRUE(Has<wstring(string const&)>(&zo::AbbrevValue));
    EXPECT_TRUE((Has<wstring(size_t, void const*)>(&zo::AbbrevValue)));
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::PrettyPrintValueWithUnits));
    EXPECT_TRUE(Has<wstring(string const&)>(&zo::PrettyPrintValueWithUnits));
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::AbbrevValueWithUnits));
    EXPECT_TRUE(Has<wstring(string const&)>(&zo::AbbrevValueWithUnits));
    EXPECT_TRUE((Has<wstring(size_t, void const*)>(&zo::AbbrevValueWithUnits)));
    EXPECT_TRUE((Has<status(H const&, wstring const&)>(&zo::SetPrettyPrintValue)));
    EXPECT_TRUE((Has<status(H const&, wstring const&)>(&zo::SetAbbrevValue)));
    EXPECT_TRUE(Has<Kind(H const&)>(&zo::Units));
    EXPECT_TRUE(Has<Kind(string const&)>(&zo::Units));
    EXPECT_TRUE((Has<Kind(size_t, void const*)>(&zo::Units)));
    EXPECT_TRUE(Has<DataParamType(H const&)>(&zo::DataParameterType));
    EXPECT_TRUE(Has<DataParamType(string const&)>(&zo::DataParameterType));
    EXPECT_TRUE(Has<DataParamType(size_t)>(&zo::DataParameterType));
    EXPECT_TRUE(Has<UnitSet(H const&)>(&zo::VisibleUnits));
    EXPECT_TRUE(Has<UnitSet(string const&)>(&zo::VisibleUnits));
    EXPECT_TRUE((Has<UnitSet(size_t, void const*)>(&zo::VisibleUnits)));
    EXPECT_TRUE(Has<UnitSet(DataParamType const&)>(&zo::VisibleUnits));
    EXPECT_TRUE(Has<wstring(H const&)>(&zo::UnitString));
    EXPECT_TRUE((Has<wstring(size_t, void const*)>(&zo::UnitString)));
    EXPECT_TRUE(Has<wstring(DataParamType const&)>(&zo::UnitString));
    EXPECT_TRUE((Has<void(wstring&, Kind)>(&zo::Debug_AppendUKName)));
    static_assert(std::is_base_of_v<zo::IZOAccessValueTypeTrait, zo::ZOAccessReadFormattedOutput>);
    static_assert(std::is_base_of_v<zo::IZOAccessValueTypeTrait, zo::ZOAcessWriteFormattedOutput>);
}

TEST(NamesTest, CalculationsAreThere) {
    static_assert(std::has_virtual_destructor_v<IFn>);
    EXPECT_TRUE(Has<status(H const&)>(&zo::UpdateCalculatedValues));
    EXPECT_TRUE(Has<H(IFn*)>(&zo::GetAtomicWrapper<IFn>));
    EXPECT_TRUE((Has<DataParamType(H const&, string const&)>(&zo::LookupParam)));
    EXPECT_TRUE(Has<bool(H const&)>(&zo::IsTemplate));
    EXPECT_TRUE(Has<bool(IZO const*)>(&zo::IsTemplate));
}

TEST(NamesTest, ViewsAreThere) {
    using Pairs = std::vector<std::pair<wstring, wstring>>;
    EXPECT_TRUE((Has<void(std::vector<H>&, H const&, Query)>(&view::VisibleSubFields)));
    EXPECT_TRUE((Has<bool(H const&, Query)>(&view::IsValid)));
    EXPECT_TRUE((Has<H(H const&, wstring const&, Query)>(&view::FindTag)));
    EXPECT_TRUE((Has<H(wstring const&, Query)>(&view::FindTag)));
    EXPECT_TRUE((Has<std::vector<view::ZONameParts>(Pairs const&, Query)>(&view::FindAllMatching)));
    EXPECT_TRUE((Has<std::vector<zo::NameParts>(H const&, Pairs const&)>(&zo::GetModifierViewTraversalName)));
    EXPECT_TRUE((Has<wstring(string const&, Query, H const&)>(&zo::FullTagFromView)));
}

TEST(NamesTest, TheClipboardIsThere) {
    using Contents = clip::ClipboardContents;
    using FileVersion = hzn::version::NumberKind<0>;
    using Texts = std::vector<wstring>;
    using Reasons = std::vector<status>*;
    using Transaction = htl::handle<zo::ZOTransaction>;
    EXPECT_TRUE((Has<status(Contents&, std::vector<H>, FileVersion const&, string const&)>(&clip::Serialize)));
    EXPECT_TRUE((Has<bool(GID const&, Contents&, FileVersion const&)>(&clip::Contains)));
    EXPECT_TRUE(
        (Has<status(GID const&, Contents&, FileVersion const&, Texts&, string const&, Reasons)>(&clip::Deserialize)));
    EXPECT_TRUE((Has<status(GID const&, GGID const&, GGID const&, Contents&, FileVersion const&, Texts&, string const&,
                            Reasons)>(&clip::Deserialize)));
    EXPECT_TRUE(Has<Transaction()>(&clip::MakeClipImportTransaction));
    EXPECT_TRUE((
        Has<status(Transaction const&, wstring const&, FileVersion const&, Reasons)>(&clip::DeserializeToTransaction)));
    EXPECT_TRUE((Has<status(GID const&, GGID const&, GGID const&, Transaction const&, Texts&, string const&, Reasons)>(
        &clip::DeserializeFromTransaction)));
    static_assert(std::is_base_of_v<zo::ZOTransaction, clip::impl::ZOTransactionLockable>);
    static_assert(std::is_base_of_v<clip::impl::ZOTransactionLockable, clip::ZOClipImportTransaction>);
}

TEST(NamesTest, SchemasAreThere) {
    EXPECT_TRUE((Has<status(wstring const&)>(&zo::schema::Save)));
    EXPECT_TRUE((Has<status(size_t, wstring const&)>(&zo::schema::Save)));
    EXPECT_TRUE((Has<status(wstring const&)>(&zo::schema::SaveXsd)));
    EXPECT_TRUE((Has<status(string&)>(&zo::schema::XsdText)));
}

} // namespace
