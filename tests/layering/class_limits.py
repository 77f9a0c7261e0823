#!/usr/bin/env python3
"""Checks that no class has more than 30 functions or 12 data members. A record, which has members only, is a list, and
may be as long as what it lists.

usage: class_limits.py PROJECT_FOLDER      prints each class that has more and ends with 1 when there is one
       class_limits.py --self-test         shows that such a class is found
"""
import pathlib
import re
import sys

MOST_FUNCTIONS = 30
MOST_MEMBERS = 12
# The manuals of the serial layer: they are as long as what a serial port can do.
MANUALS = {"SerialPort", "SerialPortManager"}

NOISE = re.compile(r"""//[^\n]*|/\*.*?\*/|^[ \t]*\#[^\n]*|"(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)+'""", re.S | re.M)
OPENING = re.compile(r"\b(class|struct)\s+(?:\[\[\w+\]\]\s*)?(?:VORRANO_\w+(?:\([^)]*\))?\s+)?([\w:]+)[^;(){}=]*\{")
NO_MEMBER = re.compile(r"\s*(using|friend|typedef|enum|class|struct|union|static_assert|template\s*<[^;{]*>\s*friend)\b")
TEMPLATE = re.compile(r"\btemplate\s*<[^<>]*(?:<[^<>]*>[^<>]*)*>")
MACRO = re.compile(r"\b(?:VORRANO_\w+|Q_\w+)(?:\([^()]*\))?")


def end_of_block(text, start):
    """The place after the brace that closes the one at `start`."""
    depth = 0
    for place in range(start, len(text)):
        depth += (text[place] == "{") - (text[place] == "}")
        if depth == 0:
            return place + 1
    raise SystemExit("a brace is not closed")


def declarations(body):
    """What a class declares at its own level, without what stands between braces."""
    current = ""
    place = 0
    while place < len(body):
        if body[place] == "{":
            place = end_of_block(body, place)
            current += "{}"
            follows = re.match(r"\s*([;,])?", body[place:])
            # The body of a function ends its declaration; the value of a member, or a member of an initialiser list, not.
            if not follows.group(1) and not re.match(r"\s*\{", body[place:]):
                yield current
                current = ""
        elif body[place] == ";":
            yield current
            current = ""
            place += 1
        else:
            current += body[place]
            place += 1


def counts(body):
    functions = members = 0
    for declaration in declarations(body):
        declaration = re.sub(r"^(\s*(public|protected|private)(\s+slots)?\s*:|\s*signals\s*:)+", "", declaration)
        declaration = MACRO.sub("", declaration)
        if not declaration.strip() or NO_MEMBER.match(declaration):
            continue
        # A function's parameters stand outside of every template's arguments; those of std::function do not.
        plain = declaration
        while plain != (plain := re.sub(r"<[^<>]*>", "", plain)):
            pass
        if "(" in plain.split("=")[0] or "operator" in plain:
            functions += 1
        elif not re.match(r"\s*(inline\s+)?static\s+constexpr\b", plain):
            members += 1
    return functions, members


def classes(text):
    text = NOISE.sub(lambda found: '""' if found.group()[0] in "\"'" else "", text)
    text = TEMPLATE.sub("", text)
    for found in OPENING.finditer(text):
        if re.search(r"\benum\s*$", text[: found.start()]):
            continue
        start = found.end() - 1
        yield found.group(2), *counts(text[start + 1 : end_of_block(text, start) - 1])


def too_large(text):
    return ["%s: %d functions, %d members" % each for each in classes(text)
            if each[0] not in MANUALS and each[1] > 0 and (each[1] > MOST_FUNCTIONS or each[2] > MOST_MEMBERS)]


def check(project):
    files = [file for folder in ("src", "simulator") for ending in ("h", "cpp")
             for file in sorted(project.glob("%s/**/*.%s" % (folder, ending)))]
    if not files:
        raise SystemExit("%s has nothing to look at" % project)
    found = ["%s: %s" % (file, large) for file in files for large in too_large(file.read_text(encoding="utf-8"))]
    print("\n".join(found))
    return 1 if found else 0


SAMPLE = """
enum class Kind { One, Two };
class Cup : public Ware {
public:
    Cup(int a, std::string b) : m_a(a), m_b{std::move(b)} { fill(); }
    // { no brace
    [[nodiscard]] std::string name() const { return "}"; }
    [[nodiscard]] std::function<void()> told() const;
    bool operator==(const Cup&) const = default;
    using Step = void (Cup::*)();
    struct Handle { int length = 0; };
private:
    static constexpr int kSides = 3;
    std::function<void(int)> m_told;
    std::vector<std::pair<int, int>> m_a{{1, 2}};
    int m_b VORRANO_GUARDED_BY(m_mutex) = call(1);
    std::atomic<bool> m_on = false;
};
"""


def self_test():
    assert list(classes(SAMPLE)) == [("Cup", 4, 4), ("Handle", 0, 1)], list(classes(SAMPLE))
    members = "".join("int m_%d = 0;" % i for i in range(13))
    functions = "".join("void f%d();" % i for i in range(31))
    assert too_large("class Full { %s void f(); };" % members) == ["Full: 1 functions, 13 members"]
    assert not too_large("struct Record { %s };" % members)
    assert list(classes("template <class T>\nclass Of { T m_t; };")) == [("Of", 0, 1)]
    assert too_large("struct Busy { %s };" % functions) == ["Busy: 31 functions, 0 members"]
    assert not too_large("class SerialPort { %s };" % functions)
    assert not too_large("class Full { %s void f(); };" % members[: -len("int m_12 = 0;")])
    return 0


if __name__ == "__main__":
    sys.exit(self_test() if sys.argv[1] == "--self-test" else check(pathlib.Path(sys.argv[1])))
