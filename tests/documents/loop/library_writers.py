"""The library's own writers: they make tables of the cases' disks on blank images, which the tools read back."""

import json

import tools

ALIGNMENT = 1 << 20  # bytes


def aligned(disk):
    """The partitions in bytes, without the parts at their ends that are not aligned. The last unit of the disk is the
    backup table's."""
    limit = (disk.size // ALIGNMENT - 1) * ALIGNMENT
    found = []
    for one in disk.partitions:
        start = -(-one.start * disk.sector // ALIGNMENT) * ALIGNMENT
        end = min(one.end * disk.sector // ALIGNMENT * ALIGNMENT, limit)
        if end > start > 0:
            found.append({"start": start, "size": end - start, "type": one.type})
    return found


def order(disk, image):
    """A line of the list for the program."""
    line = {"image": str(image), "bytesPerSector": disk.sector, "size": disk.size, "label": disk.label}
    if disk.label == "dos":
        line["signature"] = int(disk.id, 16)
    else:
        line["id"] = disk.id
        line["partitions"] = aligned(disk)
    return line


def expected(disk, ids):
    """The table in the form of tools.read_dump, without the entries' numbers."""
    partitions = []
    if disk.label == "gpt":
        found = sorted(aligned(disk), key=lambda one: one["start"])
        for one, guid in zip(found, ids):
            partitions.append((one["start"] // disk.sector, one["size"] // disk.sector, one["type"], guid, False))
        partitions += [()] * abs(len(found) - len(ids))
    return (disk.label, disk.id, partitions)


def read(disk, image):
    table = tools.read_dump(tools.dump(image, disk.sector))
    keys = ("start", "size", "type", "uuid", "active")
    return (table["label"], table["id"], [tuple(one[key] for key in keys) for one in table["partitions"]])


def check_one(disk, image, answer):
    if "error" in answer:
        return [f"the library's writer: {answer['error']}"]
    found, wanted = read(disk, image), expected(disk, answer["ids"])
    return [] if found == wanted else [f"the library's writer: meant {wanted}\n    found {found}"]


def check(cases, folder, run_on_windows, windows_path):
    disks = []
    for case in cases:
        for number, disk in enumerate(case.disks):
            image = case.folder / f"written{number}.img"
            tools.make_blank(image, disk.size)
            disks.append((case, disk, image))
    lines = folder / "tables.txt"
    lines.write_text(
        "".join(json.dumps(order(disk, windows_path(image))) + "\n" for _, disk, image in disks), encoding="utf-8"
    )
    answers = [json.loads(line) for line in run_on_windows("ORVANE_WRITES", lines).splitlines() if line.startswith("{")]
    for index, (case, disk, image) in enumerate(disks):
        try:
            answer = answers[index] if index < len(answers) else {"error": "no answer"}
            case.wrong += check_one(disk, image, answer)
        except tools.ToolError as error:
            case.wrong.append(f"the library's writer: {error}")
