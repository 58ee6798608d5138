"""What of others is in the programs: the table components.toml, the bill of materials and the notices made of it."""

import fnmatch
import hashlib
import json
import pathlib
import re
import subprocess
import time
import tomllib
import uuid

ROOT = pathlib.Path(__file__).resolve().parent.parent
COMMON_LICENCES = pathlib.Path("/usr/share/common-licenses")
SYSTEMS = ("windows", "linux")
# The package that a library is needed from, or whose source text becomes part of a program.
RELATIONS = {"linked": "STATIC_LINK", "headers": "CONTAINS", "copied": "CONTAINS"}


class Component:
    """A row of the table, with the package as it is installed or was when it was copied."""

    def __init__(self, row, installed):
        unknown = set(row) - {"name", "package", "version", "licence", "notice", *SYSTEMS}
        if unknown:
            raise ValueError(f"components.toml: unknown keys {unknown}")
        self.name, self.licence = row["name"], row["licence"]
        self.uses = {system: row[system] for system in SYSTEMS if system in row}
        self.copied = "copied" in self.uses.values()
        if self.copied:
            self.package, self.version = row["package"], row["version"]
        else:
            self.package = installed_package(row["package"], installed)
            self.version = installed[self.package]
        self.notice = ROOT / row["notice"] if "notice" in row else pathlib.Path("/usr/share/doc", self.package, "copyright")


def installed_package(pattern, installed):
    found = [name for name in installed if fnmatch.fnmatchcase(name, pattern)]
    if len(found) != 1:
        raise ValueError(f"components.toml: {pattern} is {len(found)} installed packages")
    return found[0]


def packages_of(files):
    """The Debian packages that own the files, without architecture: {package: [files]}."""
    owners, files = {}, sorted(map(str, files))
    for first in range(0, len(files), 500):
        told = subprocess.run(["dpkg-query", "--search", *files[first:first + 500]], stdout=subprocess.PIPE, text=True,
                              check=True).stdout
        for line in told.splitlines():
            package, file = line.split(": ", 1)
            owners.setdefault(package.split(":")[0], []).append(file)
    return owners


def read(installed=None):
    """The components of the table. `installed` is {package: version}; none: what dpkg says, of this system's own."""
    rows = tomllib.loads((ROOT / "packaging/components.toml").read_text())["component"]
    if installed is None:
        # Only packages that the table means: a pattern could also match one that is not used.
        told = subprocess.run(["dpkg-query", "--show", "--showformat", "${binary:Package} ${Version} ${db:Status-Status}\n"],
                              stdout=subprocess.PIPE, text=True, check=True).stdout
        words = [line.split() for line in told.splitlines()]
        installed = {word[0].split(":")[0]: word[1] for word in words if len(word) == 3 and word[2] == "installed"}
    return [Component(row, installed) for row in rows]


def identifier(text):
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", text)


def bill(version, when, files):
    """The bill of materials, SPDX 2.3 in JSON. `files` are the released archives; the same archives give the same bytes."""
    sums = {file.name: hashlib.sha256(file.read_bytes()).hexdigest() for file in sorted(files)}
    components = read()
    packages = [{
        "SPDXID": identifier(name), "name": name, "versionInfo": version, "packageFileName": name,
        "downloadLocation": "NOASSERTION", "filesAnalyzed": False,
        "licenseConcluded": "NOASSERTION", "licenseDeclared": "NOASSERTION", "copyrightText": "NOASSERTION",
        "checksums": [{"algorithm": "SHA256", "checksumValue": checksum}],
    } for name, checksum in sums.items()]
    packages += [{
        "SPDXID": identifier(component.package), "name": component.package, "summary": component.name,
        "versionInfo": component.version, "downloadLocation": "NOASSERTION", "filesAnalyzed": False,
        "licenseConcluded": component.licence, "licenseDeclared": component.licence, "copyrightText": "NOASSERTION",
        "externalRefs": [{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
                          "referenceLocator": f"pkg:deb/debian/{component.package.replace('+', '%2B')}@"
                                              f"{component.version.replace('+', '%2B').replace(':', '%3A')}"}],
    } for component in components]
    relations = [{"spdxElementId": "SPDXRef-DOCUMENT", "relationshipType": "DESCRIBES",
                  "relatedSpdxElement": identifier(name)} for name in sums]
    relations += [{"spdxElementId": identifier(name), "relationshipType": RELATIONS[component.uses[system]],
                   "relatedSpdxElement": identifier(component.package)}
                  for name in sums for system in SYSTEMS if f"-{system}-" in name
                  for component in components if system in component.uses]
    name = f"orvane-{version}"
    unique = uuid.uuid5(uuid.NAMESPACE_URL, name + "".join(sums.values()))
    document = {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT", "name": name,
        "documentNamespace": f"urn:uuid:{unique}",
        "creationInfo": {"created": time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(when)),
                         "creators": [f"Tool: orvane-package-{version}"]},
        "hasExtractedLicensingInfos": [
            {"licenseId": "LicenseRef-public-domain", "name": "Public domain",
             "extractedText": "Parts of the MinGW-w64 runtime are in the public domain."},
            *({"licenseId": component.licence, "name": component.name, "extractedText": component.notice.read_text()}
              for component in components if component.copied),
        ],
        "packages": packages, "relationships": relations,
    }
    return json.dumps(document, indent=2) + "\n"


def notices(system):
    """Copyright and licences of everything in the programs for a system, with the texts that they refer to."""
    parts, referred = [], set()
    for component in read():
        if system in component.uses:
            text = component.notice.read_text(errors="replace")
            referred |= set(re.findall(r"/usr/share/common-licenses/([A-Za-z0-9.-]*[A-Za-z0-9])", text))
            parts.append((f"{component.name}, {component.package} {component.version}: {component.licence}", text))
    for name in sorted(referred):
        if (COMMON_LICENCES / name).is_file():
            parts.append((f"The licence text {name}", (COMMON_LICENCES / name).read_text(errors="replace")))
    rule = "=" * 100
    begin = ("The programs of Orvane for this system contain these works of others. Each part below is as the work's Debian\n"
             "package has it, and also tells of files of that package that are not in the programs.\n")
    return begin + "".join(f"\n{rule}\n{title}\n{rule}\n\n{text.rstrip()}\n" for title, text in parts)
