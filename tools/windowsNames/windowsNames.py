#!/usr/bin/env python3
"""Writes the lists of names that the Windows library shows: windowsNames.py TREE

cmake/windows/zel_effects-x64.def and -x86.def: the C++ operations under the names of this build's compiler, and the
static ones that take and give nothing but numbers and pointers also under those of that system's usual compiler;
cmake/windows/zel.def: the functions of zel.h. clang knows the names of both compilers; the standard library's
headers exist for neither target, so that bare stand-ins serve in their place.
"""

import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path

CLANG = "clang++-14"
# Of each processor: as the usual compiler spells names, as this build's does, and what its symbols have before a name.
TARGETS = {
    "x64": ("x86_64-pc-windows-msvc", "x86_64-w64-windows-gnu", ""),
    "x86": ("i686-pc-windows-msvc", "i686-w64-windows-gnu", "_"),
}
# The text's own name is the one that it has in the standard library of this build's compiler.
STAND_INS = {
    "cstdlib": "namespace std { typedef decltype(sizeof(0)) size_t; void* malloc(size_t); }",
    "cstring": "namespace std { void memcpy(void*, const void*, size_t); }",
    "string": """namespace std { template <class T> struct char_traits; template <class T> class allocator;
        inline namespace __cxx11 { template <class T, class U = char_traits<T>, class A = allocator<T>>
        class basic_string {}; } typedef basic_string<char> string; }""",
    "vector": """namespace std { template <class T> class vector { public: size_t size() const;
        T& operator[](size_t) const; }; }""",
}
CONSTRUCTORS = ("CXXConstructorDecl", "CXXDestructorDecl")


def declarations(tree, target):
    """The exported classes' members as clang tells them, in the order of the header."""
    with tempfile.TemporaryDirectory() as folder:
        for name, text in STAND_INS.items():
            Path(folder, name).write_text(text)
        source = Path(folder, "names.cpp")
        source.write_text('#include "zel_effects.h"\n')
        told = subprocess.run(
            [CLANG, f"--target={target}", "-std=c++17", "-nostdinc", "-Wno-everything", "-I", folder,
             "-I", tree / "include", "-I", tree / "include/zel_effects", "-fsyntax-only", "-Xclang", "-ast-dump=json",
             source], stdout=subprocess.PIPE, check=True)
    found = []
    exported = re.findall(r"class ZEL_EXPORT (\w+)", (tree / "include/zel_effects/zel_effects.h").read_text())

    def visit(node, owner):
        if node.get("kind") == "CXXRecordDecl":
            owner = node.get("name", "")
        if owner in exported and node.get("kind", "").startswith("CXX") and "mangledName" in node:
            # What has its body in the header is the host's own.
            if not node.get("isImplicit") and not any(part["kind"] == "CompoundStmt" for part in node.get("inner", [])):
                found.append(node)
        for inner in node.get("inner", []):
            visit(inner, owner)

    visit(json.loads(told.stdout), "")
    return found


def takes_numbers_and_pointers(node):
    return node.get("storageClass") == "static" and "string" not in node["type"]["qualType"]


def effects_names(tree, machine):
    usual, own, underscore = TARGETS[machine]
    lines = []
    pairs = list(zip(declarations(tree, own), declarations(tree, usual), strict=True))
    for here, there in pairs:
        name = here["mangledName"].removeprefix(underscore)
        names = [name]
        if here["kind"] in CONSTRUCTORS:
            # Of a whole object and of a base, under one body or two.
            names = [re.sub(r"([CD])[0-9](E)", rf"\g<1>{digit}\2", name) for digit in "12"]
        lines += names
        if takes_numbers_and_pointers(here):
            lines.append(f'"{there["mangledName"]}" = {name}')
    return lines


def interface_names(tree):
    return sorted(set(re.findall(r"ZEL_API[^;(]*?\b(zel_\w+)\(", (tree / "include/zel/zel.h").read_text())))


def write(path, lines):
    text = "; Written by tools/windowsNames/windowsNames.py.\nEXPORTS\n"
    path.write_text(text + "".join(f"  {line}\n" for line in lines))


def main():
    tree = Path(sys.argv[1])
    folder = tree / "cmake/windows"
    for machine in TARGETS:
        write(folder / f"zel_effects-{machine}.def", effects_names(tree, machine))
    write(folder / "zel.def", interface_names(tree))


if __name__ == "__main__":
    main()
