#!/usr/bin/env python3
"""check_exports.py LIBRARY LIST NM OBJDUMP [--update] [--without-global-new] [--instrumented]

Compares the names that a library exports with the kept list, or writes that. The list is sorted and
holds demangled names, each once, with the allocation operators' argument as std::size_t. A library
may be built without the global ones of these, or with sanitizers.
"""
import difflib
import pathlib
import re
import subprocess
import sys

# What instrumented builds add: their run-time's symbols, and with clang the types of all functions
# that are called by address.
INSTRUMENTATION = re.compile("(__(odr_)?(asan|ubsan|tsan|msan|lsan|sanitizer)|typeinfo )")
# What older linkers export of every library.
LINKER = {"_init", "_fini", "__bss_start", "_edata", "_end"}
GLOBAL_NEW = {"operator new(std::size_t)", "operator new[](std::size_t)"}
ROW_OF_DLL = re.compile(r"^\t\[ *\d+\] (?:\+base\[ *\d+\] +[0-9a-f]+ )?(\S+)$", re.MULTILINE)
# The name itself may hold blanks.
ROW_OF_NM = re.compile("^(.*) [A-Za-z] [0-9a-f]+(?: [0-9a-f]+)? ?$", re.MULTILINE)


def output_of(*command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, **options).stdout


def exported(library, nm, objdump):
    if library.endswith(".dll"):
        table = output_of(objdump, "--private-headers", library)
        mangled = ROW_OF_DLL.findall(table.partition("[Ordinal/Name Pointer] Table")[2])
        names = output_of("c++filt", "--no-strip-underscore", input="\n".join(mangled))
        return names.splitlines()
    options = ("--dynamic", "--demangle", "--defined-only", "--format=posix")
    return ROW_OF_NM.findall(output_of(nm, *options, library))


library, kept, nm, objdump, *options = sys.argv[1:]
size = re.compile(r"(operator new(?:\[\])?\()unsigned (?:int|long long|long)\b")
names = {size.sub(r"\1std::size_t", name) for name in exported(library, nm, objdump)} - LINKER
if "--instrumented" in options:
    names = {name for name in names if not INSTRUMENTATION.match(name)}
if not names:
    sys.exit(f"{library} exports nothing: is it stripped or static?")
left_out = GLOBAL_NEW if "--without-global-new" in options else set()
kept = pathlib.Path(kept)
if "--update" in options:
    kept.write_text("".join(f"{name}\n" for name in sorted(names | left_out)))
wanted = [name for name in kept.read_text().splitlines() if name not in left_out]
difference = difflib.unified_diff(wanted, sorted(names), str(kept), library, lineterm="")
sys.exit("\n".join(difference) or 0)
