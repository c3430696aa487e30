#include "Common/extinfo/TagMatcher.h"

#include <algorithm>
#include <cassert>
#include <numeric>

namespace zo::extinfo {

namespace {

// A text that is read forwards or backwards.
struct Run {
    wchar_t const* first = nullptr;
    std::ptrdiff_t step = 1;
    std::size_t length = 0;

    wchar_t operator[](std::size_t i) const noexcept { return first[static_cast<std::ptrdiff_t>(i) * step]; }
    friend std::size_t Shared(Run const& a, Run const& b) noexcept {
        std::size_t const most = std::min(a.length, b.length);
        std::size_t i = 0;
        while (i < most && a[i] == b[i]) ++i;
        return i;
    }
    friend bool operator<(Run const& a, Run const& b) noexcept {
        std::size_t const same = Shared(a, b);
        return same < b.length && (same == a.length || a[same] < b[same]);
    }
    friend bool operator==(Run const& a, Run const& b) noexcept {
        return a.length == b.length && Shared(a, b) == a.length;
    }
};

Run Prefix(std::wstring_view pattern) { return {pattern.data(), 1, pattern.find(L'*')}; }
Run Suffix(std::wstring_view pattern) {
    std::size_t const length = pattern.size() - pattern.find(L'*') - 1;
    return {pattern.data() + pattern.size() - 1, -1, length};
}

} // namespace

// Makes one tree from sorted texts, all different, each with its value.
struct TagMatcher::Builder {
    struct Leaf {
        Run text;
        std::uint32_t value;
    };
    struct Job {
        std::uint32_t node;
        std::size_t begin, end, depth;
    };

    std::vector<Node>& nodes;
    std::vector<wchar_t>& firsts;

    std::uint32_t AddNode() {
        nodes.emplace_back();
        firsts.push_back(0);
        return static_cast<std::uint32_t>(nodes.size() - 1);
    }

    void Build(std::uint32_t root, std::vector<Leaf> const& leaves) {
        // A list of what is left to do, for a tree may be as deep as its texts are long.
        std::vector<Job> jobs{{root, 0, leaves.size(), 0}};
        while (!jobs.empty()) {
            Job const job = jobs.back();
            jobs.pop_back();
            std::size_t begin = job.begin;
            if (begin < job.end && leaves[begin].text.length == job.depth)
                nodes[job.node].value = leaves[begin++].value;
            auto const groupEnd = [&](std::size_t from) {
                std::size_t to = from + 1;
                while (to < job.end && leaves[to].text[job.depth] == leaves[from].text[job.depth]) ++to;
                return to;
            };
            auto const firstChild = static_cast<std::uint32_t>(nodes.size());
            for (std::size_t from = begin; from < job.end;) {
                std::size_t const to = groupEnd(from);
                std::size_t const depth = Shared(leaves[from].text, leaves[to - 1].text);
                std::uint32_t const child = AddNode();
                Run const& text = leaves[from].text;
                nodes[child].label = text.first + static_cast<std::ptrdiff_t>(job.depth) * text.step;
                nodes[child].length = static_cast<std::uint32_t>(depth - job.depth);
                firsts[child] = *nodes[child].label;
                jobs.push_back({child, from, to, depth});
                from = to;
            }
            nodes[job.node].children = static_cast<std::uint32_t>(nodes.size()) - firstChild;
            if (nodes[job.node].children) nodes[job.node].firstChild = firstChild;
        }
    }
};

TagMatcher::TagMatcher(std::vector<std::wstring_view> const& patterns) : count(patterns.size()), split(0) {
    for (std::size_t i = 0; i < patterns.size(); ++i) {
        assert(std::ranges::count(patterns[i], L'*') == 1);
        if (patterns[i].front() == L'*') split = i;
    }
    ++split;

    // By prefix, then by suffix; of equal patterns the one that wins comes first.
    std::vector<std::uint32_t> order(patterns.size());
    std::iota(order.begin(), order.end(), 0u);
    std::rotate(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(std::min(split, order.size())), order.end());
    std::ranges::stable_sort(order, [&](std::uint32_t a, std::uint32_t b) {
        Run const left = Prefix(patterns[a]);
        Run const right = Prefix(patterns[b]);
        return left == right ? Suffix(patterns[a]) < Suffix(patterns[b]) : left < right;
    });

    nodes.reserve(2 * patterns.size() + 1);
    firsts.reserve(2 * patterns.size() + 1);
    Builder builder{nodes, firsts};
    std::uint32_t const root = builder.AddNode();
    std::vector<Builder::Leaf> prefixes;
    for (std::size_t begin = 0; begin < order.size();) {
        Run const prefix = Prefix(patterns[order[begin]]);
        std::vector<Builder::Leaf> leaves;
        std::size_t longest = 0;
        std::size_t end = begin;
        for (; end < order.size() && Prefix(patterns[order[end]]) == prefix; ++end) {
            Run const suffix = Suffix(patterns[order[end]]);
            longest = std::max(longest, suffix.length);
            if (leaves.empty() || !(leaves.back().text == suffix)) leaves.push_back({suffix, order[end]});
        }
        prefixes.push_back({prefix, static_cast<std::uint32_t>(suffixes.size())});
        suffixes.push_back({builder.AddNode(), longest});
        builder.Build(suffixes.back().root, leaves);
        begin = end;
    }
    builder.Build(root, prefixes);
}

std::uint32_t TagMatcher::Child_(Node const& node, wchar_t first) const noexcept {
    if (node.children == 0) return none;
    wchar_t const* const begin = firsts.data() + node.firstChild;
    wchar_t const* const end = begin + node.children;
    wchar_t const* const found = std::lower_bound(begin, end, first);
    return found != end && *found == first ? node.firstChild + static_cast<std::uint32_t>(found - begin) : none;
}

std::size_t TagMatcher::Match(std::wstring_view tag) const noexcept {
    std::size_t best = npos;
    std::size_t bestLength = 0;
    Node const* node = nodes.data();
    for (std::size_t depth = 0; depth < tag.size();) {
        if (node->value != none) {
            Suffixes const& behind = suffixes[node->value];
            // The "*" takes one character at least.
            std::size_t const room = tag.size() - depth - 1;
            if (depth + 1 + std::min(room, behind.longest) >= bestLength) {
                wchar_t const* const last = tag.data() + tag.size() - 1;
                std::size_t length = 0;
                std::size_t pattern = npos;
                Node const* at = &nodes[behind.root];
                for (std::size_t taken = 0;;) {
                    if (at->value != none) {
                        pattern = at->value;
                        length = depth + 1 + taken;
                    }
                    if (taken == room) break;
                    std::uint32_t const child = Child_(*at, *(last - taken));
                    if (child == none) break;
                    at = &nodes[child];
                    if (at->length > room - taken) break;
                    std::size_t same = 1;
                    while (same < at->length && *(at->label - same) == *(last - taken - same)) ++same;
                    if (same < at->length) break;
                    taken += same;
                }
                if (pattern != npos &&
                    (length > bestLength || (length == bestLength && Rank_(pattern) < Rank_(best)))) {
                    best = pattern;
                    bestLength = length;
                }
            }
        }
        std::uint32_t const child = Child_(*node, tag[depth]);
        if (child == none) break;
        node = &nodes[child];
        if (node->length > tag.size() - depth) break;
        std::size_t same = 1;
        while (same < node->length && node->label[same] == tag[depth + same]) ++same;
        if (same < node->length) break;
        depth += same;
    }
    return best;
}

} // namespace zo::extinfo
