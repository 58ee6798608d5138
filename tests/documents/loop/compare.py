"""What has to be the same after a disk was made again."""

import pathlib
import sys
import xml.etree.ElementTree as ElementTree

sys.path.append(str(pathlib.Path(__file__).resolve().parents[2] / "host"))
import made_values  # noqa: E402


def comparable(table, with_id):
    """Not compared: GPT names and attributes, empty slots, the type of the extended partition, an unknown signature."""
    partitions = []
    for one in table["partitions"]:
        kind = one["type"]
        logical = table["label"] == "dos" and one["number"] > 4
        if table["label"] == "dos" and kind in ("5", "f"):
            kind = "extended"
        partitions.append((logical, one["start"], one["size"], kind, one["uuid"], one["active"]))
    if table["label"] == "gpt":
        partitions.sort()  # the order of entries without a volume is not in the document
    return (table["label"], table["id"] if with_id else None, partitions)


def differences(name, before, after):
    if before == after:
        return []
    return [f"{name}: was {before}\n    now {after}"]


def masked(document, larger):
    """The document's elements in a line each. With `larger`, without the disks' sizes and the gaps at their ends."""
    root = ElementTree.fromstring(document)
    made = {}
    for element in root.iter():
        if element.tag in made_values.VOLUME_GUIDS and element.text and element.text.strip():
            element.text = made.setdefault(element.text, f"made {len(made)}")
    if larger:
        for disk in root.find("BMREnvInfo/DiskDrives"):
            if disk.tag.startswith("x") and disk.find("size") is not None:
                disk.remove(disk.find("size"))
                drop_last_gap(disk)
    lines = []
    collect(root, "", lines)
    return lines


def drop_last_gap(disk):
    rows = [row for row in disk if row.tag.startswith("y")]
    if rows and rows[-1].findtext("parttype").strip() == "Unallocated":
        disk.remove(rows[-1])
        rows.pop()
    disk.find("size_idy").text = str(len(rows))


def collect(element, path, lines):
    path = f"{path}/{element.tag}"
    lines.append(f"{path} {(element.text or '').strip()}")
    for child in element:
        collect(child, path, lines)


def document_differences(name, before, after, larger):
    one, other = masked(before, larger), masked(after, larger)
    if one == other:
        return []
    place = next((index for index, pair in enumerate(zip(one, other)) if pair[0] != pair[1]), min(len(one), len(other)))
    return [f"{name}: was {one[place:place + 1]}\n    now {other[place:place + 1]}"]


def unnamed(page, number, disk, has_volume):
    """The exceptions of this disk that plan.md does not name."""
    section = page.split(f"\n## Disk {number}\n", 1)[1].split("\n## ", 1)[0]
    logicals = disk.label == "dos" and any(one.number > 4 for one in disk.partitions)
    extended = disk.label == "dos" and any(one.type in ("5", "f") for one in disk.partitions)
    wanted = {
        "GPT names and attributes": disk.label == "gpt",
        "Entry order": disk.label == "gpt",
        "Empty slots": disk.label == "dos",
        "Type of the extended partition": extended,
        "Places of the logical records": logicals,
        "Signature unknown": disk.label == "dos" and not has_volume,
    }
    return [f"disk {number}: plan.md does not name: {text}" for text, needed in wanted.items() if needed and text not in section]
