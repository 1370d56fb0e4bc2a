#!/usr/bin/env python3
"""Checks the C++ in the game maker's guide against the engine.

A block the guide quotes from an example ("From `Maze.cpp`:") must stand in
that example's file, line for line in order (comments and spacing aside): the
examples themselves are built and tested by the package tests. Every other
block must compile against the engine's headers, at file scope when it
defines something, else as the body of a function.

    check-guide-code.py GUIDE EXAMPLES_DIR INCLUDE_DIR COMPILER

INCLUDE_DIR is where a game finds the engine's headers: an installed
package's include/vantor.

Prints each block that fails and exits 1 when any does.
"""
import pathlib
import re
import subprocess
import sys
import tempfile

# Names the guide's fragments take from the text around them.
FRAGMENT_PRELUDE = """
vt::Object* p_player = nullptr;
vt::Object* p_enemy = nullptr;
vt::Object* p_copy = nullptr;
const std::string SCORE_LABEL = "Score";
int loadResources();
void populateWorld();
"""

QUOTE = re.compile(r"[Ff]rom (?:the \w+'s )?`([^`]+\.(?:cpp|h))`[^`]*$")
DEFINITION = re.compile(r"^(class|struct|int|void|bool)\b[^;]*\{\s*$")


def code_lines(text):
    lines = []
    for line in text.splitlines():
        line = re.sub(r"\s+//.*$|^\s*//.*$", "", line)
        line = re.sub(r"\s+", " ", line).strip()
        if line:
            lines.append(line)
    return lines


def blocks(guide_text):
    for match in re.finditer(r"```cpp\n(.*?)```", guide_text, re.S):
        paragraph = guide_text[: match.start()].rstrip().split("\n\n")[-1]
        quote = QUOTE.search(" ".join(paragraph.split()))
        line_number = guide_text.count("\n", 0, match.start()) + 2
        yield line_number, match.group(1), quote.group(1) if quote else None


def quoted_from_example(block, file_name, examples_dir):
    wanted = code_lines(block)
    for path in sorted(examples_dir.rglob(pathlib.Path(file_name).name)):
        if not str(path).endswith(file_name):
            continue
        source = code_lines(path.read_text())
        at = 0
        for line in source:
            if at < len(wanted) and line == wanted[at]:
                at += 1
        if at == len(wanted):
            return None
    return f"not found line for line in any examples/**/{file_name}"


def compiles(block, engine_dir, compiler):
    headers = sorted(p.relative_to(engine_dir) for p in engine_dir.rglob("*.h"))
    includes = "".join(f'#include "{h}"\n' for h in headers)
    body = block if DEFINITION.match(block.lstrip().splitlines()[0]) else (
        "int guideBlock() {\n" + block + "\nreturn 0;\n}\n")
    source = includes + "#include <string>\n" + FRAGMENT_PRELUDE + body
    with tempfile.NamedTemporaryFile("w", suffix=".cpp") as file:
        file.write(source)
        file.flush()
        result = subprocess.run(
            [compiler, "-std=c++17", "-fsyntax-only", "-Wall", "-Wextra", "-Wno-unused",
             f"-I{engine_dir}", file.name],
            capture_output=True, text=True)
    return None if result.returncode == 0 else result.stderr.strip()


def main():
    guide, examples_dir, engine_dir, compiler = sys.argv[1:5]
    examples_dir = pathlib.Path(examples_dir)
    engine_dir = pathlib.Path(engine_dir)
    failed = 0
    checked = 0
    for line_number, block, quoted_file in blocks(pathlib.Path(guide).read_text()):
        checked += 1
        if quoted_file:
            problem = quoted_from_example(block, quoted_file, examples_dir)
        else:
            problem = compiles(block, engine_dir, compiler)
        if problem:
            failed += 1
            print(f"{guide}:{line_number}: {problem}")
    print(f"{checked} blocks checked, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
