"""Prints the figures of scripts/coverage from what llvm-cov exported: coverage.py FILE [--missing [PATH...]]."""
import json
import os
import sys

root = os.getcwd() + "/"
missing = "--missing" in sys.argv
paths = [arg for arg in sys.argv[2:] if arg != "--missing"]
if any(path.startswith("-") for path in paths) or paths and not missing:
    sys.exit("usage: coverage.py FILE [--missing [PATH...]]")


def executed(segments):
    """For each line with code: the greatest count of what stands on it."""
    lines = {}
    for segment in segments:
        lines.setdefault(segment[0], []).append(segment)
    counts = {}
    above = None  # what goes on from the line above
    for line in range(segments[0][0], segments[-1][0] + 1):
        here = lines.get(line, [])
        counted = [count for _, _, count, has_count, begins, gap in here if has_count and begins and not gap]
        if above and above[3]:
            counted.append(above[2])
            if above[5]:  # the gap behind an assertion or a jump: what stands on the line itself tells
                counted += [count for _, _, count, has_count, _, gap in here if has_count and not gap]
        skipped = here and not here[0][3] and here[0][4]
        if counted and not skipped:
            counts[line] = max(counted)
        if here:
            above = here[-1]
    return counts


def branches(file, counts):
    """What each condition took, in all instantiations of a template together: {place: [true, false]}."""
    places = {}
    for *place, yes, no, _, _, _ in file["branches"]:
        taken = places.setdefault(tuple(place), [0, 0])
        taken[0] += yes
        taken[1] += no
    # Without a count on a line that ran: decided by the compiler.
    return {place: taken for place, taken in places.items() if any(taken) or not counts.get(place[0])}


class Sum:
    """Lines and branches, and how many of them are reached."""

    def __init__(self):
        self.lines = self.lines_hit = self.branches = self.branches_hit = 0

    def add(self, counts, places):
        self.lines += len(counts)
        self.lines_hit += sum(1 for count in counts.values() if count)
        self.branches += 2 * len(places)
        self.branches_hit += sum((yes > 0) + (no > 0) for yes, no in places.values())

    def row(self, name):
        def part(hit, of):
            return f"{hit:6} of {of:6} {100 * hit / of if of else 100:6.1f} %"

        return f"{name:18}{part(self.lines_hit, self.lines)}   {part(self.branches_hit, self.branches)}"


def ranges(lines, all_lines):
    """Consecutive lines of code as ranges."""
    result = []
    for line in lines:
        if result and not any(other in all_lines for other in range(result[-1][1] + 1, line)):
            result[-1][1] = line
        else:
            result.append([line, line])
    return ", ".join(f"{first}-{last}" if last > first else f"{first}" for first, last in result)


folders = {}
total = Sum()
files = json.load(open(sys.argv[1]))["data"][0]["files"]
for file in sorted(files, key=lambda file: file["filename"]):
    name = file["filename"].removeprefix(root)
    if not name.startswith(("Common/", "support/")) or not file["segments"]:
        continue
    counts = executed(file["segments"])
    places = branches(file, counts)
    for sums in (folders.setdefault(os.path.dirname(name), Sum()), total):
        sums.add(counts, places)
    if not missing or paths and not any(name.startswith(path) for path in paths):
        continue
    never = [line for line, count in counts.items() if not count]
    one_way = [(line, column, "true" if yes else "false") for (line, column, _, _), (yes, no) in sorted(places.items())
               if (yes > 0) != (no > 0)]
    if never:
        print(f"{name}: not reached: {ranges(never, {line for line, count in counts.items() if count})}")
    for line, column, always in one_way:
        if counts.get(line):
            print(f"{name}:{line}:{column}: always {always}")

if not total.lines:
    sys.exit("coverage: nothing was counted")
if missing:
    print()
print(f"{'':18}{'lines':^25}   {'branches':^25}")
for folder, sums in sorted(folders.items()):
    print(sums.row(folder))
print(total.row("all"))
