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


def failure(error):
    return f"the library's writer: {type(error).__name__}: {error}"


def check(cases, folder, run_on_windows, windows_path):
    """Whatever goes wrong is told of its case, so that its seed is printed."""
    disks = []
    orders = []
    for case in cases:
        for number, disk in enumerate(case.disks):
            try:
                image = case.folder / f"written{number}.img"
                tools.make_blank(image, disk.size)
                orders.append(json.dumps(order(disk, windows_path(image))) + "\n")
                disks.append((case, disk, image))
            except Exception as error:
                case.wrong.append(failure(error))
    lines = folder / "tables.txt"
    lines.write_text("".join(orders), encoding="utf-8")
    said = run_on_windows("ORVANE_WRITES", lines)
    answers = [line for line in said.splitlines() if line.startswith("{")]
    for index, (case, disk, image) in enumerate(disks):
        try:
            answer = json.loads(answers[index]) if index < len(answers) else {"error": f"no answer: {said}"}
            case.wrong += check_one(disk, image, answer)
        except Exception as error:
            case.wrong.append(failure(error))
