#include "examples/slope/Tree.h"

#include "examples/slope/Table.h"
#include "examples/slope/Text.h"

#include <algorithm>
#include <ostream>

namespace slope {

namespace {

constexpr std::size_t shownValuesWidth = 40, shownDifferences = 20;

/// The node as array; null for any other.
zo::ZOArray* AsArray(zo::H const& node) { return dynamic_cast<zo::ZOArray*>(node.get()); }

/// Whether the elements are plain values, which one line shows.
bool HoldsValues(zo::ZOArray& array) {
    zo::H const first = zo::Find(&array, 0);
    return first && first->IsValueType();
}

std::string TextOf(zo::IZO& node) {
    std::wstring text;
    if (htl::status const failure = node.Get(text); failure.IsError()) return "<" + Message(failure) + ">";
    return Narrow(text);
}

class Printer {
public:
    Printer(math::UnitSet const& units, std::size_t elementLimit) : units(units), elementLimit(elementLimit) {}

    void Children(zo::H const& parent) {
        zo::ZOArray* const array = AsArray(parent);
        if (array && HoldsValues(*array)) return;
        std::size_t shown = 0;
        for (zo::H const& child : *parent) {
            if (array && shown == elementLimit) {
                table.Add({parent->Name() + "[...]", "", Count(array->Length() - shown) + " more"});
                return;
            }
            ++shown;
            table.Add({child->Name(), Narrow(child->TagName(zo::FullTagType)), Value_(child), UnitText(child, units)});
            if (!child->IsValueType()) Children(child);
        }
    }

    void Alias(zo::H const& alias) {
        std::string const source = LeadsTo(alias);
        table.Add({alias->Name(), Narrow(alias->TagName(zo::FullTagType)),
                   source.empty() ? "stands for nothing now" : "stands for " + source});
    }

    Table table{{{"Name"}, {"Tag"}, {"Value"}, {"Unit"}}};

private:
    static std::string Value_(zo::H const& node) {
        std::string const target = LeadsTo(node);
        return ValueText(node) + (target.empty() ? "" : " (" + target + ")");
    }

    math::UnitSet units;
    std::size_t elementLimit;
};

/// A walk over all nodes of a document, depth first.
///
/// A registry's tables are those of the thread's current one, so each step makes the walk's own document current: two
/// walks can go side by side.
class Walk {
public:
    explicit Walk(Document& document) : document(document) {
        levels.push_back(document.Root()->begin());
        Settle_();
    }

    bool AtEnd() const { return levels.empty(); }
    std::size_t Depth() const { return levels.size(); }
    /// Whether both walks stand on nodes that stand for the same.
    bool IsBeside(Walk const& other) const {
        return Depth() == other.Depth() && row == other.row && levels.back().index == other.levels.back().index;
    }

    bool IsValue() const { return isValue; }
    /// The length of an array, 1 of any other node.
    std::size_t Length() const { return length; }
    std::string const& Text() const { return text; }
    std::string Name() const { return Node_().Name(); }

    /// To the node's first child, or what comes behind it.
    void StepInto() {
        if (isValue) return StepOver(); // it has no children
        document.MakeCurrent();
        levels.push_back(Node_().begin());
        Settle_();
    }
    /// To what comes behind the node and all below it.
    void StepOver() {
        document.MakeCurrent();
        ++levels.back();
        Settle_();
    }

private:
    zo::IZO& Node_() const { return **levels.back(); }

    void Settle_() {
        while (!levels.empty() && !*levels.back()) {
            levels.pop_back();
            if (!levels.empty()) ++levels.back();
        }
        if (levels.empty()) return;
        zo::IZO& node = Node_();
        row = node.RegID();
        isValue = node.IsValueType();
        length = node.Length();
        text.clear();
        if (isValue) text = node.IsUndefined() ? "(missing)" : TextOf(node);
    }

    Document& document;
    std::vector<zo::ZOFwrdIterator> levels; // the last one stands on the node
    std::size_t row = 0;
    std::size_t length = 0;
    std::string text;
    bool isValue = false;
};

class Comparer {
public:
    Comparer(Document& before, Document& after) : after(after), a(before), b(after) {}

    Comparison Run(std::function<void(std::size_t)> const& progress) {
        for (; !a.AtEnd() || !b.AtEnd(); ++result.nodes) {
            if (progress && result.nodes % 4096 == 0) progress(result.nodes);
            if (!a.AtEnd() && !b.AtEnd() && a.IsBeside(b))
                Compare_();
            else if (OnlyBefore_())
                Differ_(a, "isn't there any more"), a.StepOver();
            else
                Differ_(b, "is new"), b.StepOver();
        }
        return std::move(result);
    }

private:
    void Differ_(Walk const& where, std::string const& how) {
        ++result.differing;
        if (result.differences.size() < shownDifferences) result.differences.push_back(where.Name() + " " + how);
    }

    void Compare_() {
        if (a.Length() != b.Length()) {
            Differ_(a, "had " + Count(a.Length(), "element", "elements") + " and has " + Count(b.Length()));
            a.StepOver();
            b.StepOver();
            return;
        }
        if (a.Text() != b.Text()) Differ_(a, "was " + a.Text() + " and is " + b.Text());
        a.StepInto();
        b.StepInto();
    }

    /// Where the walks stand apart: whether the node before has no counterpart. Branches come and go, so the children
    /// of the two need not be the same.
    bool OnlyBefore_() {
        if (a.AtEnd() || b.AtEnd()) return b.AtEnd();
        if (a.Depth() != b.Depth()) return a.Depth() > b.Depth();
        return !after.Find(a.Name());
    }

    Document& after;
    Walk a, b;
    Comparison result;
};

/// Whether `b` matches all that `a` would save.
bool Matches(Document& a, Document& b) {
    zo::H const root = a.Root();
    for (zo::H const& branch : *root) {
        // Each branch is found with its own document current; below it the structures lead on by themselves.
        zo::H const counterpart = b.Find(branch->Name());
        a.MakeCurrent();
        if (!zo::AreZOsIdenticalUsingPersistance(branch, counterpart)) return false;
    }
    return true;
}

} // namespace

bool IsAlias(zo::H const& node) {
    auto const* const redirect = dynamic_cast<zo::ZORedirect const*>(node.get());
    return redirect && redirect->IsAlias();
}

std::string LeadsTo(zo::H const& node) {
    auto const* const redirect = dynamic_cast<zo::ZORedirect const*>(node.get());
    zo::H const source = redirect ? redirect->Redirect() : zo::H();
    return source ? source->Name() : std::string();
}

std::string ValueText(zo::H const& node) {
    if (zo::ZOArray* const array = AsArray(node)) {
        std::size_t const length = array->Length();
        if (length == 0) return "(none)";
        if (!HoldsValues(*array)) return "(" + Count(length) + ")";
        std::vector<std::string> texts;
        std::size_t width = 0;
        for (std::size_t i = 0; i < length && width < shownValuesWidth; ++i) {
            texts.push_back(ValueText(zo::Find(array, i)));
            width += Width(texts.back()) + 2;
        }
        if (texts.size() < length) texts.push_back("... (" + Count(length) + ")");
        return Join(texts, ", ");
    }
    if (!node->IsValueType()) return {};
    if (node->IsUndefined()) return zo::IsLinkField(node) ? "(none)" : "(missing)";
    return TextOf(*node);
}

std::string NoValue(zo::H const& node) {
    std::string const name = node->Name();
    if (AsArray(node)) return name + " is a list: " + name + ".Len is its length, " + name + "[0] its first element.";
    return name + " has no value of its own; `slope show` lists its parts.";
}

std::string UnitText(zo::H const& node, math::UnitSet const& units) {
    zo::ZOArray* const array = AsArray(node);
    if (array && array->Length() && HoldsValues(*array)) return UnitText(zo::Find(array, 0), units);
    meta::MetaDataTraits const traits = node->GetDataTraits();
    meta::MetaTraitsAtomic const* const record = traits.AsAtomic();
    if (!record || !record->unitKind) return {};
    return Narrow(hzn::units::GetEngUnitValueString(record->unitKind(nullptr, node.get()), units));
}

void PrintTree(std::ostream& out, zo::H const& top, math::UnitSet const& units, std::size_t elementLimit,
               std::vector<zo::H> const& aliases) {
    Printer printer(units, elementLimit);
    printer.Children(top);
    for (zo::H const& alias : aliases) printer.Alias(alias);
    printer.table.Print(out);
}

Comparison CompareTrees(Document& before, Document& after, std::function<void(std::size_t)> const& progress) {
    return Comparer(before, after).Run(progress);
}

bool SaveTheSame(Document& a, Document& b) { return Matches(a, b) && Matches(b, a); }

} // namespace slope
