#!/usr/bin/env python3
"""Compares the dynamic symbols that a built library defines with the kept list.

The list holds demangled names, sorted, one a line. Constructors and destructors, which a library
holds more than once, appear once. The size argument of the allocation operators differs between
32 and 64 bits and is kept as std::size_t.

A wanted change of the interface is written into the list with --update.
"""
import argparse
import re
import subprocess
import sys

# What instrumented builds add: their run-time's symbols, and with clang the types of all functions
# that are called by address.
INSTRUMENTATION = re.compile(r"^(__(odr_)?(asan|ubsan|tsan|msan|lsan|sanitizer)|typeinfo )")
# What older linkers export of every library.
LINKER = {"_init", "_fini", "__bss_start", "_edata", "_end"}
GLOBAL_NEW = {"operator new(std::size_t)", "operator new[](std::size_t)"}


def normalized(name):
    return re.sub(r"(operator new(?:\[\])?)\(unsigned (?:int|long long|long)\b", r"\1(std::size_t", name)


def output_of(*command, **options):
    return subprocess.run(command, check=True, capture_output=True, text=True, **options).stdout


def exported(nm, objdump, library, instrumented):
    if library.endswith(".dll"):
        table = output_of(objdump, "--private-headers", library)
        mangled = re.findall(r"^\t\[ *\d+\] (?:\+base\[ *\d+\] +[0-9a-f]+ )?(\S+)$", table.partition("[Ordinal/Name Pointer] Table")[2], re.M)
        lines = output_of("c++filt", "--no-strip-underscore", input="\n".join(mangled)).splitlines()
    else:
        output = output_of(nm, "--dynamic", "--demangle", "--defined-only", "--format=posix", library)
        # "name type address size": the name itself may hold blanks.
        lines = [re.fullmatch(r"(.*) [A-Za-z] [0-9a-f]+(?: [0-9a-f]+)? ?", line)[1] for line in output.splitlines()]
    names = {normalized(name) for name in lines}
    added = INSTRUMENTATION if instrumented else re.compile(r"(?!)")
    return {name for name in names if name not in LINKER and not added.match(name)}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("library")
    parser.add_argument("list")
    parser.add_argument("--nm", default="nm")
    parser.add_argument("--objdump", default="objdump")
    parser.add_argument("--without-global-new", action="store_true",
                        help="the library was built with HYLBAS_EXPORT_GLOBAL_NEW off")
    parser.add_argument("--instrumented", action="store_true",
                        help="the library was built with sanitizers")
    parser.add_argument("--update", action="store_true", help="write the list instead of comparing")
    arguments = parser.parse_args()

    found = exported(arguments.nm, arguments.objdump, arguments.library, arguments.instrumented)
    if not found:
        sys.exit(f"{arguments.library} exports nothing: is it a stripped or a static library?")
    if arguments.update:
        if arguments.without_global_new:
            found |= GLOBAL_NEW
        with open(arguments.list, "w", encoding="utf-8") as file:
            file.writelines(f"{name}\n" for name in sorted(found))
        return

    with open(arguments.list, encoding="utf-8") as file:
        lines = file.read().splitlines()
    kept = set(lines)
    if arguments.without_global_new:
        kept -= GLOBAL_NEW
    problems = [f"  missing      {name}" for name in sorted(kept - found)]
    problems += [f"  superfluous  {name}" for name in sorted(found - kept)]
    if lines != sorted(set(lines)):
        problems.append(f"  {arguments.list} is not sorted, or holds a name twice")
    if problems:
        print(f"{arguments.library} differs from {arguments.list}:", *problems, sep="\n")
        print("When the change is wanted, run this script again with --update and review the list.")
        sys.exit(1)
    print(f"{len(found)} names, as listed.")


main()
