"""Described machines with the images of random disks, and volumes on their partitions."""

import json

import tables

LETTERS = [f"{letter}:\\" for letter in "DEFGHIJKLMNOPQRSTUVWXYZ"]
LABELS = ["", "Data", "Größe & <Lage>", "a|b*c_d", "x" * 32]


def extent_of(number, disk, partition):
    return {"disk": number, "offset": partition.start * disk.sector, "length": partition.size * disk.sector}


def random_volumes(rng, disks):
    """The first partition of a machine's first disk has Windows on it; of the others, a random share has a volume."""
    volumes = []
    letters = list(LETTERS)
    for number, disk in enumerate(disks):
        share = rng.choice([0, 0.5, 0.5, 1])
        for index, partition in enumerate(tables.capturable(disk)):
            windows = number == 0 and index == 0
            if not windows and rng.random() >= share:
                continue
            volume = {"extents": [extent_of(number, disk, partition)]}
            if windows:
                volume["mountPoints"] = ["C:\\"]
            elif letters and rng.random() < 0.3:
                volume["mountPoints"] = [letters.pop(0)]
            volume["label"] = rng.choice(LABELS)
            volume["fileSystem"] = "NTFS" if windows else rng.choice(["NTFS", "NTFS", "FAT32", "exFAT", ""])
            volumes.append(volume)
    return volumes


def has_volume(volumes, number):
    return any(volume["extents"][0]["disk"] == number for volume in volumes)


def write_machine(file, disks, images, volumes):
    description = {
        "name": "Random disks",
        "disks": [
            {"index": number, "image": str(image), "bytesPerSector": disk.sector}
            for number, (disk, image) in enumerate(zip(disks, images))
        ],
        "volumes": volumes,
    }
    file.write_text(json.dumps(description, indent=1), encoding="utf-8")
