#!/usr/bin/env python3
"""Writes what the Debian packages of a folder are made of, as SPDX 2.3 in JSON, on standard output.

    billOfMaterials.py FOLDER           every package there (but debug symbols), and what stands behind it
    billOfMaterials.py FOLDER --table   the licences of what is mapped, as a table in Markdown

Behind a package stand the Debian packages whose libraries its programs and libraries map, as the dynamic linker of this
machine resolves them, and those of the group `build` in scripts/packages.txt: what is compiled in, and what is only
needed to build. Versions and licences are dpkg's own data; where a copyright file is not in the machine-readable form,
its text alone tells. The same packages on the same machine give the same bytes.
"""

import datetime
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent

# Of the group `build`: what ends up inside the binaries, as headers or as a static library.
COMPILED_IN = {"libcli11-dev", "libeigen3-dev", "libglew-dev", "libstb-dev", "nlohmann-json3-dev", "pybind11-dev"}

# Names of Debian's copyright files for the identifiers of SPDX, where both mean the same text.
SPDX = {
    "expat": "MIT", "mit": "MIT", "apache-2.0": "Apache-2.0", "apache-2": "Apache-2.0", "zlib": "Zlib",
    "bsd-2-clause": "BSD-2-Clause", "bsd-3-clause": "BSD-3-Clause", "bsd-3-clauses": "BSD-3-Clause", "isc": "ISC",
    "boost-1.0": "BSL-1.0", "bsl-1.0": "BSL-1.0", "mpl-2.0": "MPL-2.0", "mpl-2": "MPL-2.0", "cc0-1.0": "CC0-1.0",
    "gpl-2": "GPL-2.0-only", "gpl-2+": "GPL-2.0-or-later", "gpl-2.0+": "GPL-2.0-or-later", "gpl-3": "GPL-3.0-only",
    "gpl-3+": "GPL-3.0-or-later", "lgpl-2": "LGPL-2.0-only", "lgpl-2+": "LGPL-2.0-or-later",
    "lgpl-2.0+": "LGPL-2.0-or-later", "lgpl-2.1": "LGPL-2.1-only", "lgpl-2.1+": "LGPL-2.1-or-later",
    "lgpl-3": "LGPL-3.0-only", "lgpl-3+": "LGPL-3.0-or-later", "libpng": "libpng-2.0",
}


def run(*command, **settings):
    return subprocess.run(command, check=True, capture_output=True, text=True, **settings).stdout


def owners(paths):
    """The Debian packages that files belong to. Of a system whose /lib is a link, dpkg knows either name."""
    names = {name: path for path in map(os.path.realpath, paths) for name in (path, path.removeprefix("/usr"))}
    # Of two names one is unknown, so that dpkg ends with status 1.
    told = subprocess.run(["dpkg", "-S", *sorted(names)], capture_output=True, text=True).stdout if names else ""
    found = {names[name]: packages.split(":")[0] for packages, name in
             (line.split(": ", 1) for line in told.splitlines()) if name in names}
    if missing := set(names.values()) - found.keys():
        raise SystemExit(f"{sorted(missing)[0]} belongs to no package")
    return set(found.values())


def is_program(file):
    with file.open("rb") as stream:
        return stream.read(4) == b"\x7fELF"


def mapped(files, whole):
    """The packages whose libraries these programs and libraries map, but for those in the tree of our own."""
    own = {str(path.parent) for path in whole.rglob("*.so*")}
    environment = {**os.environ, "LD_LIBRARY_PATH": ":".join(sorted(own))}
    libraries = set()
    for file in filter(is_program, files):
        for line in run("ldd", file, env=environment).splitlines():
            if "not found" in line:
                raise SystemExit(f"{file.name}: {line.strip()}")
            found = re.search(r"(/\S+) \(0x", line)
            if found and not found[1].startswith(str(whole)):
                libraries.add(found[1])
    return owners(libraries)


def licences(package):
    """The licence that the copyright file of an installed package names for the most of it, and all that it names."""
    file = pathlib.Path("/usr/share/doc") / package / "copyright"
    text = file.read_text(encoding="utf-8", errors="replace") if file.exists() else ""
    if not re.match(r"\s*Format(-Specification)?:", text):
        return "", []
    whole = re.search(r"^Files:\s*\*\s*\n(?:.+\n)*?License:[ \t]*(\S.*)$", text, re.MULTILINE)
    names = {name.strip() for name in re.findall(r"^License:[ \t]*(\S.*)$", text, re.MULTILINE)}
    return whole[1].strip() if whole else "", sorted(names)


def identifier(name):
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", name)


def supplier(maintainer):
    return "Organization: " + maintainer.replace("<", "(").replace(">", ")")


def installed(package):
    fields = "${Version}\t${Architecture}\t${Maintainer}\t${Homepage}\n"
    version, architecture, maintainer, homepage = run("dpkg-query", "-W", "-f", fields, package).split("\n")[0].split("\t")
    most, names = licences(package)
    return {
        "name": package, "SPDXID": identifier(package), "versionInfo": version,
        "supplier": supplier(maintainer), "downloadLocation": "NOASSERTION", "filesAnalyzed": False,
        "homepage": homepage or "NOASSERTION", "copyrightText": "NOASSERTION", "licenseConcluded": "NOASSERTION",
        "licenseDeclared": SPDX.get(most.lower(), "NOASSERTION"),
        "licenseComments": "; ".join(names) + f" in /usr/share/doc/{package}/copyright" if names
                           else f"told in /usr/share/doc/{package}/copyright",
        "externalRefs": [{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
                          "referenceLocator": f"pkg:deb/debian/{package}@{version}?arch={architecture}"}],
    }


def ours(deb):
    field = {name: run("dpkg-deb", "-f", deb, name).strip() for name in ("Package", "Version", "Architecture", "Maintainer")}
    licence = "Apache-2.0" if field["Package"] == "zel-networks" else "MIT"
    return {
        "name": field["Package"], "SPDXID": identifier(field["Package"]), "versionInfo": field["Version"],
        "supplier": supplier(field["Maintainer"]), "packageFileName": deb.name,
        "downloadLocation": "NOASSERTION", "filesAnalyzed": False, "copyrightText": "NOASSERTION",
        "licenseConcluded": "NOASSERTION", "licenseDeclared": licence,
        "checksums": [{"algorithm": "SHA256", "checksumValue": hashlib.sha256(deb.read_bytes()).hexdigest()}],
        "externalRefs": [{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl", "referenceLocator":
                          f"pkg:deb/{field['Package']}@{field['Version']}?arch={field['Architecture']}"}],
    }


def relation(of, kind, to):
    return {"spdxElementId": identifier(of), "relationshipType": kind, "relatedSpdxElement": identifier(to)}


def build_group():
    lines = (ROOT / "scripts/packages.txt").read_text().splitlines()
    return {line.split()[1] for line in lines if re.match(r"build\s", line)} | {"pybind11-dev"}


def changelog_time():
    """When the version was made, so that the same packages give the same bytes."""
    seconds = run("dpkg-parsechangelog", "-l", ROOT / "packaging/debian/changelog", "-S", "Timestamp")
    return datetime.datetime.fromtimestamp(int(seconds), datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")


def table(behind):
    print("| package | licence of the most of it | mapped by |\n|---|---|---|")
    for name in sorted(set().union(*behind.values())):
        users = ", ".join(sorted(own for own in behind if name in behind[own]))
        print(f"| {name} | {licences(name)[0] or 'told in its text'} | {users} |")


def main():
    folder = pathlib.Path(sys.argv[1])
    debs = sorted(path for path in folder.glob("*.deb") if "-dbgsym_" not in path.name)
    if not debs:
        raise SystemExit(f"no packages in {folder}")
    own = [ours(deb) for deb in debs]
    behind = {}
    with tempfile.TemporaryDirectory() as work:
        whole = pathlib.Path(work).resolve()
        for deb in debs:  # all in one tree, in which they find each other
            run("dpkg-deb", "-x", deb, whole)
        for deb, package in zip(debs, own):
            lines = run("dpkg-deb", "-c", deb).splitlines()
            behind[package["name"]] = mapped([whole / line.split()[-1] for line in lines if line[0] == "-"], whole)
    if "--table" in sys.argv:
        table(behind)
        return

    built_with = build_group()
    names = {package["name"] for package in own}
    relations = [relation("DOCUMENT", "DESCRIBES", name) for name in sorted(names)]
    for name in sorted(behind):
        relations += [relation(name, "DYNAMIC_LINK", other) for other in sorted(behind[name])]
    for name in sorted(built_with):
        kind = "STATIC_LINK" if name in COMPILED_IN else "BUILD_TOOL_OF"
        relations.append(relation("zel", kind, name) if name in COMPILED_IN else relation(name, kind, "zel"))
    others = sorted(set().union(built_with, *behind.values()) - names)
    digest = hashlib.sha256("".join(package["checksums"][0]["checksumValue"] for package in own).encode())
    json.dump({
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT", "name": "zel-effects",
        "documentNamespace": f"urn:sha256:{digest.hexdigest()}",
        "creationInfo": {"created": changelog_time(), "creators": ["Tool: packaging/billOfMaterials.py"]},
        "packages": own + [installed(name) for name in others], "relationships": relations,
    }, sys.stdout, indent=1, sort_keys=True)
    print()


if __name__ == "__main__":
    main()
