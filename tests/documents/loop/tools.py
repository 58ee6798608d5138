"""The partitioning tools: they make the disks and read them back."""

import os
import re
import subprocess

ENVIRONMENT = {**os.environ, "LC_ALL": "C.UTF-8", "PATH": os.environ["PATH"] + ":/usr/sbin:/sbin"}


class ToolError(Exception):
    """A tool failed."""


def run(*command, given=None):
    words = [str(word) for word in command]
    result = subprocess.run(
        words,
        env=ENVIRONMENT,
        input=given,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        encoding="utf-8",
        errors="replace",
        check=False,
    )
    if result.returncode != 0:
        raise ToolError(f"{' '.join(words)}: exit code {result.returncode}\n{result.stdout}")
    return result.stdout


def make_blank(image, size):
    image.unlink(missing_ok=True)
    with image.open("wb") as file:
        file.truncate(size)


def script_of(disk):
    lines = [f"label: {disk.label}", f"label-id: {disk.id}", "unit: sectors", f"sector-size: {disk.sector}"]
    if disk.label == "gpt":
        lines.insert(3, f"first-lba: {34 if disk.sector == 512 else 6}")
        lines.insert(4, "table-length: 128")
    for one in disk.partitions:
        line = f"image{one.number} : start={one.start}, size={one.size}, type={one.type}"
        line += f", uuid={one.uuid}" if one.uuid else ""
        line += f', name="{one.name}"' if one.name else ""
        line += f', attrs="{one.attributes}"' if one.attributes else ""
        line += ", bootable" if one.active else ""
        lines.append(line)
    return "\n".join(lines) + "\n"


def sgdisk_arguments(disk):
    arguments = ["--clear", f"--disk-guid={disk.id}", "--set-alignment=1"]
    for one in disk.partitions:
        arguments += [
            f"--new={one.number}:{one.start}:{one.end - 1}",
            f"--typecode={one.number}:{one.type}",
            f"--partition-guid={one.number}:{one.uuid}",
            f"--change-name={one.number}:{one.name}",
        ]
        bits = {"RequiredPartition": 0, "GUID:63": 63}
        arguments += [f"--attributes={one.number}:set:{bits[word]}" for word in one.attributes.split()]
    return arguments


def apply_script(image, sector, script):
    """Gives the script, a file, to the tool for that sector size."""
    if sector == 512:
        run("sfdisk", "--quiet", image, given=script.read_text(encoding="utf-8"))
        return
    said = run("fdisk", "--bytes", "-b", sector, image, given=f"I\n{script}\nw\n")
    if "Script successfully applied." not in said or "The partition table has been altered." not in said:
        raise ToolError(f"fdisk refuses {script}:\n{said}")


def make_disk(disk, image):
    make_blank(image, disk.size)
    if disk.tool == "sgdisk":
        run("sgdisk", *sgdisk_arguments(disk), image)
        return
    script = image.with_suffix(".script")
    script.write_text(script_of(disk), encoding="utf-8")
    apply_script(image, disk.sector, script)


def dump(image, sector):
    """The tool's own dump."""
    if sector == 512:
        return run("sfdisk", "--dump", image)
    file = image.with_suffix(".dump")
    file.unlink(missing_ok=True)
    run("fdisk", "-b", sector, image, given=f"O\n{file}\nq\n")
    return file.read_text(encoding="utf-8")


def read_dump(text):
    """{"label": ..., "id": ..., "partitions": [...]}, each with number, start, size, type, uuid and active."""
    head, _, body = text.partition("\n\n")
    fields = dict(line.split(": ", 1) for line in head.splitlines() if ": " in line)
    partitions = []
    for line in body.splitlines():
        node, _, rest = line.rpartition(" : ")
        values = dict(re.findall(r"(start|size|type|uuid)= *([^, ]+)", rest))
        partitions.append(
            {
                "number": int(re.search(r"\d+$", node).group()),
                "start": int(values["start"]),
                "size": int(values["size"]),
                "type": values["type"],
                "uuid": values.get("uuid", ""),
                "active": rest.endswith(", bootable"),
            }
        )
    return {"label": fields["label"], "id": fields["label-id"], "partitions": partitions}
