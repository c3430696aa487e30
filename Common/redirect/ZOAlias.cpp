#include "Common/redirect/ZOAlias.h"

#include "Common/registry/Find.h"
#include "Common/registry/RedirectScope.h"
#include "Common/registry/RegistryImpl.h"

#include <algorithm>
#include <typeinfo>
#include <utility>

namespace zo {

using impl::NodeAccess;

namespace {

// Bounds the aliases that forward inside one another. Plain aliases are followed in a loop, but those of client classes
// pass on their operations themselves, and may lead in a circle.
class Forwarding {
public:
    Forwarding() noexcept : open(++depth <= impl::RedirectScope::mostNested) {}
    Forwarding(Forwarding const&) = delete;
    Forwarding& operator=(Forwarding const&) = delete;
    ~Forwarding() { --depth; }
    explicit operator bool() const noexcept { return open; }

private:
    static thread_local constinit int depth;
    bool open;
};

thread_local constinit int Forwarding::depth = 0;

// What the source answers, and `none` where there is no source.
template <class Answer, class Question>
Answer Ask(H const& source, Answer none, Question const& question) {
    Forwarding const scope;
    if (!source || !scope) return none;
    return question(*source);
}

// The same where no source is a failure.
template <class Operation>
htl::status Forward(ZOAliasBase const& alias, H const& source, Operation const& operation) {
    Forwarding const scope;
    if (!source || !scope) return ZOError::not_found(alias.RedirectName());
    return operation(*source);
}

// Only the classes whose operations are known: any other may answer for itself.
bool PassesOnEverything(IZO const& node) {
    // By address: these classes are described here and nowhere else.
    std::type_info const* const type = &typeid(node);
    return type == &typeid(ZOAlias) || type == &typeid(ZOAliasAbsolute) || type == &typeid(ZOAliasAbsoluteSlow) ||
           type == &typeid(ZOAliasRelative);
}

// The row's own traits, null unless the node has a row with a tag.
meta::MetaPersistTraits const* TagOfItsOwn(IZO const& node) {
    ZORegistryImpl const& tables = impl::Current();
    if (!tables.HasRow(node.RegID()) || tables.persistTraits[node.RegID()].TagName.empty()) return nullptr;
    return &tables.persistTraits[node.RegID()];
}

} // namespace

ZOAliasBase::ZOAliasBase(std::size_t regID, ZOSet* owner) : IZO(regID, owner, npos) { SetRedirector(this); }
ZOAliasBase::ZOAliasBase(ZOAliasBase const& other) : ZOAliasBase(other.RegID(), other.Owner()) {}
ZOAliasBase::~ZOAliasBase() = default;

bool ZOAliasBase::IsAlias() const noexcept { return true; }

template <class Alias, class Next>
H ZOAliasBase::Follow_(Alias& from, Next next) {
    H at = next(from);
    for (int left = impl::mostRedirects; at && PassesOnEverything(*at); at = next(static_cast<Alias&>(*at)))
        if (--left == 0) return {};
    return at;
}

H ZOAliasBase::Target() {
    return Follow_(*this, [](ZOAliasBase& alias) { return alias.WriteRedirect(); });
}

H ZOAliasBase::Target() const {
    return Follow_(*this, [](ZOAliasBase const& alias) { return alias.Redirect(); });
}

H ZOAliasBase::WriteRedirect() { return Redirect(); }

bool ZOAliasBase::Validate() {
    OnInvalidateMemory();
    return static_cast<bool>(WriteRedirect());
}

H* ZOAliasBase::Kept() noexcept { return nullptr; }

H ZOAliasBase::Keep(H& kept, H found) {
    if (kept == found) return found;
    IZO const* at = found.get();
    for (int left = impl::mostRedirects; at; --left) {
        if (at == this || left == 0) return found;
        // Everything is counted by a handle or an alias here, so asking it changes nothing.
        auto* const alias = dynamic_cast<ZOAliasBase*>(const_cast<IZO*>(at));
        H const* const next = alias ? alias->Kept() : nullptr;
        at = next ? next->get() : nullptr;
    }
    Drop(kept);
    kept = found;
    return found;
}

void ZOAliasBase::Drop(H& kept) noexcept {
    H at = std::exchange(kept, {});
    while (at && at->RefCount() == 1) {
        auto* const alias = dynamic_cast<ZOAliasBase*>(at.get());
        H* const next = alias ? alias->Kept() : nullptr;
        if (!next) break;
        at = std::exchange(*next, {});
    }
}

meta::MetaDataTraits ZOAliasBase::GetDataTraits() const {
    return Ask(Target(), meta::MetaDataTraits(), [](IZO const& source) { return source.GetDataTraits(); });
}

bool ZOAliasBase::IsUndefined() const {
    // Not by the source's own answer: what that says of itself may differ from what its value says.
    return Ask(Target(), true, [](IZO const& source) {
        auto const* const alias = dynamic_cast<ZOAliasBase const*>(&source);
        return alias ? alias->ZOAliasBase::IsUndefined() : source.IZO::IsUndefined();
    });
}

std::size_t ZOAliasBase::Length() const {
    return Ask(Target(), std::size_t(0), [](IZO const& source) { return source.Length(); });
}

htl::status ZOAliasBase::Verify() const {
    return Ask(Target(), htl::status(), [](IZO const& source) { return source.Verify(); });
}

meta::MetaPersistTraits ZOAliasBase::GetPersistTraits() const {
    if (meta::MetaPersistTraits const* const own = TagOfItsOwn(*this)) return *own;
    H source = Redirect();
    for (int left = impl::mostRedirects; source && PassesOnEverything(*source) && !TagOfItsOwn(*source);) {
        if (--left == 0) return {};
        source = static_cast<ZOAliasBase const&>(*source).Redirect();
    }
    Forwarding const scope;
    meta::MetaPersistTraits result;
    if (!source || !scope) return result;
    auto const* const redirect = dynamic_cast<ZORedirect const*>(source.get());
    if (redirect && redirect->IsAlias()) {
        // Asked once: an alias that asks the next one for its tag and again for its tag path takes twice as long with
        // each step.
        meta::MetaPersistTraits const above = source->GetPersistTraits();
        result.Tag = above.Tag;
        result.TagName = above.TagName;
    } else {
        result.Tag = source->Tag();
        result.TagName = source->TagName(FullTagType);
    }
    return result;
}

void ZOAliasBase::Clear() {
    Forwarding const scope;
    if (H const source = Target(); source && scope) source->Clear();
}

htl::status ZOAliasBase::Set(double const& value) {
    return Forward(*this, Target(), [&](IZO& source) { return source.Set(value); });
}
htl::status ZOAliasBase::Set(__int64 const& value) {
    return Forward(*this, Target(), [&](IZO& source) { return source.Set(value); });
}
htl::status ZOAliasBase::Set(bool const& value) {
    return Forward(*this, Target(), [&](IZO& source) { return source.Set(value); });
}
htl::status ZOAliasBase::Set(std::wstring const& value) {
    return Forward(*this, Target(), [&](IZO& source) { return source.Set(value); });
}
htl::status ZOAliasBase::Get(double& value) {
    return Forward(*this, Target(), [&](IZO& source) { return source.Get(value); });
}
htl::status ZOAliasBase::Get(__int64& value) {
    return Forward(*this, Target(), [&](IZO& source) { return source.Get(value); });
}
htl::status ZOAliasBase::Get(bool& value) {
    return Forward(*this, Target(), [&](IZO& source) { return source.Get(value); });
}
htl::status ZOAliasBase::Get(std::wstring& value) {
    return Forward(*this, Target(), [&](IZO& source) { return source.Get(value); });
}

ZOFwrdIterator ZOAliasBase::begin() {
    return Ask(Target(), end(), [](IZO& source) { return source.begin(); });
}

htl::status ZOAliasBase::Assign(H const& value) {
    return Forward(*this, Target(), [&](IZO& source) { return source.Assign(value); });
}

H ZOAliasBase::GetSubZO(std::string const& name) {
    H const source = Target();
    Forwarding const scope;
    if (name.empty() || !source || !source->Owner() || !scope) return {};
    return source->Owner()->Find(source, name);
}

htl::status ZOAliasBase::CallValueTypeTrait(IZOAccessValueTypeTrait& trait) {
    return Forward(*this, Target(), [&](IZO& source) { return NodeAccess::CallValueTypeTrait(source, trait); });
}

htl::status ZOAliasBase::Resize(std::size_t const& length) {
    return Forward(*this, Target(), [&](IZO& source) { return NodeAccess::Resize(source, length); });
}

void ZOAliasBase::GetNextSubZO(ZOFwrdIterator& position) {
    Forwarding const scope;
    if (H const source = Target(); source && scope)
        NodeAccess::GetNextSubZO(*source, position);
    else
        position.current.release(); // a walk must not stand still for ever
}

ZOAlias::ZOAlias(std::string const& name, std::size_t regID, ZOSet* owner) : ZOAliasBase(regID, owner), source(name) {}
ZOAlias::ZOAlias(ZOAlias const& other) : ZOAliasBase(other), source(other.source) {}
ZOAlias::~ZOAlias() { Drop(kept); }

std::string ZOAlias::RedirectName() const { return source; }

H ZOAlias::Redirect() const { return kept ? kept : ZORedirect::Redirect(); }

H ZOAlias::WriteRedirect() {
    H found = Redirect();
    if (!found) return found;
    if (RegID() != npos && Owner() == ZORegistry::Instance()) {
        Drop(kept);
        return found;
    }
    return Keep(kept, std::move(found));
}

IZO* ZOAlias::Clone() { return new ZOAlias(*this); }
void ZOAlias::OnInvalidateMemory() { Drop(kept); }
H* ZOAlias::Kept() noexcept { return &kept; }

ZOAliasAbsolute::~ZOAliasAbsolute() = default;

H ZOAliasAbsolute::WriteRedirect() {
    H found = Redirect();
    return found ? Keep(kept, std::move(found)) : found;
}

IZO* ZOAliasAbsolute::Clone() { return new ZOAliasAbsolute(*this); }

ZOAliasByTag::ZOAliasByTag(std::wstring const& tag, std::size_t regID, ZOSet* owner)
    : ZOAliasBase(regID, owner), source(tag) {}
ZOAliasByTag::ZOAliasByTag(ZOAliasByTag const& other) : ZOAliasBase(other), source(other.source) {}
ZOAliasByTag::~ZOAliasByTag() { Drop(kept); }

std::string ZOAliasByTag::RedirectName() const { return Name(); }

H ZOAliasByTag::Redirect() const {
    if (kept) return kept;
    impl::RedirectScope const scope;
    return source.empty() || !scope ? H() : Lookup();
}

H ZOAliasByTag::WriteRedirect() {
    H found = Redirect();
    return found ? Keep(kept, std::move(found)) : found;
}

void ZOAliasByTag::OnInvalidateMemory() { Drop(kept); }
H* ZOAliasByTag::Kept() noexcept { return &kept; }

ZOAliasAbsoluteSlow::~ZOAliasAbsoluteSlow() = default;
IZO* ZOAliasAbsoluteSlow::Clone() { return new ZOAliasAbsoluteSlow(*this); }
H ZOAliasAbsoluteSlow::Lookup() const { return FindTag(source); }

ZOAliasRelative::~ZOAliasRelative() = default;
IZO* ZOAliasRelative::Clone() { return new ZOAliasRelative(*this); }
H ZOAliasRelative::Lookup() const {
    // The lookup starts at a handle; the alias itself stays as it is.
    return LookupRelative(H(const_cast<ZOAliasRelative*>(this)), source);
}

H impl::MakeAlias(std::string const& source, ZOSet* owner) {
    htl::handle<ZOAlias> const alias(new ZOAlias(source, IZO::npos, owner));
    return alias->Validate() ? H(alias) : H();
}

} // namespace zo
