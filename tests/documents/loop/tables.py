"""Random disks: what is on them. All places and sizes are in sectors."""

import dataclasses
import uuid

MIB = 1 << 20
SMALLEST = 64 * MIB
LARGEST = 15 << 40
MBR_LIMIT = (1 << 32) - 1  # sectors
MOST_LOGICALS = 56
GPT_RESERVE = {512: 34, 4096: 6}  # the sectors before the first usable one, for 128 entries

MBR_TYPES = [number for number in range(1, 256) if number not in (0x05, 0x0F, 0x85, 0xEE)]
MBR_USUAL = [0x07, 0x07, 0x07, 0x0B, 0x0C, 0x06, 0x27, 0x83]
GPT_USUAL = [
    "EBD0A0A2-B9E5-4433-87C0-68B6B72699C7",
    "EBD0A0A2-B9E5-4433-87C0-68B6B72699C7",
    "C12A7328-F81F-11D2-BA4B-00A0C93EC93B",
    "E3C9E316-0B5C-4DB8-817D-F92DF00215AE",
    "DE94BBA4-06D1-4D40-A16A-BFD50179D6AC",
    "0FC63DAF-8483-4772-8E79-3D69D8477DE4",
]


@dataclasses.dataclass
class Partition:
    number: int
    start: int
    size: int
    type: str  # "7", or a GUID in upper case
    active: bool = False
    uuid: str = ""
    name: str = ""
    attributes: str = ""

    @property
    def end(self):
        return self.start + self.size


@dataclasses.dataclass
class Disk:
    label: str  # "dos" or "gpt", as sfdisk calls them
    tool: str  # "sfdisk", "sgdisk" or "fdisk"
    sector: int
    sectors: int
    id: str
    partitions: list

    @property
    def size(self):
        return self.sector * self.sectors


def is_extended(disk, partition):
    return disk.label == "dos" and partition.type in ("5", "f")


def capturable(disk):
    """The partitions on which a volume does not keep the library from a capture. It walks an MBR by slots and tells a gap
    from 1 MiB on before the first: a volume that begins below it and is not in the first slot is in that gap in part."""
    usable = [one for one in disk.partitions if not is_extended(disk, one)]
    if disk.label == "gpt":
        return usable
    first = min(disk.partitions, key=lambda one: one.number)
    inside = range(first.start, first.end)
    return [one for one in usable if one.start * disk.sector >= MIB or one.start in inside]


def random_guid(rng):
    return str(uuid.UUID(int=rng.getrandbits(128), version=4)).upper()


def alignment(rng, sector):
    return rng.choice([MIB // sector, MIB // sector, 63, 8, 1])


def places(rng, first, last, count, align, least=1):
    """Up to `count` ranges in [first, last), by start, each at a multiple of `align` and of at least `least` sectors;
    with gaps between some of them."""
    room = (last - first) // align
    if room < 1:
        return []
    cuts = sorted(set(rng.randrange(room + 1) for _ in range(2 * count)))
    found = []
    cursor = 0
    for cut in cuts:
        if len(found) == count:
            break
        begin, end = cursor, cut
        if end <= begin or (rng.random() < 0.2 and len(cuts) > count):
            cursor = max(cursor, cut)  # a gap
            continue
        start = first + begin * align
        size = (end - begin) * align
        if rng.random() < 0.3 and size > 2 * least:
            size -= rng.randrange(min(size - least, align + 1))  # an odd end
        if size >= least:
            found.append((start, size))
        cursor = cut
    return found


def random_logicals(rng, sector, start, size):
    """Each needs a sector for its record before it; the first record is the extended partition's first sector."""
    count = rng.choice([0, 1, 2, 3, rng.randrange(MOST_LOGICALS + 1)])
    align = alignment(rng, sector)
    found = []
    for begin, length in places(rng, start + 1, start + size, count, align, least=2):
        found.append((begin + 1, length - 1))
    if rng.random() < 0.3:
        rng.shuffle(found)
    return found if can_be_made(found, MIB // sector) else sorted(found)


def can_be_made(logicals, kept):
    """The tools refuse a logical partition that ends less than 1 MiB before one that they have made already."""
    return all(
        not start < later < start + size + kept
        for index, (start, size) in enumerate(logicals)
        for later, _ in logicals[:index]
    )


def random_mbr(rng, disk):
    limit = min(disk.sectors, MBR_LIMIT)
    align = alignment(rng, disk.sector)
    regions = places(rng, align, limit, rng.choice([1, 2, 3, 4, 4]), align, least=1)
    if rng.random() < 0.5:
        rng.shuffle(regions)
    extended = rng.randrange(len(regions)) if regions and rng.random() < 0.5 else None
    slots = sorted(rng.sample(range(1, 5), len(regions)))
    logical = 5
    later = []
    for index, (slot, (start, size)) in enumerate(zip(slots, regions)):
        if index != extended:
            disk.partitions.append(Partition(slot, start, size, mbr_type(rng)))
            continue
        disk.partitions.append(Partition(slot, start, size, rng.choice(["5", "f"])))
        for begin, length in random_logicals(rng, disk.sector, start, size):
            later.append(Partition(logical, begin, length, mbr_type(rng)))
            logical += 1
    disk.partitions += later
    usable = [one for one in disk.partitions if not is_extended(disk, one)]
    if usable and rng.random() < 0.7:
        rng.choice(usable).active = True


def mbr_type(rng):
    return f"{rng.choice(MBR_USUAL if rng.random() < 0.7 else MBR_TYPES):x}"


def random_gpt(rng, disk):
    reserve = GPT_RESERVE[disk.sector]
    count = rng.choice([1, 2, 4, 4, 8, 16, rng.randrange(1, 129), 128])
    align = alignment(rng, disk.sector)
    first = -(-reserve // align) * align
    found = places(rng, first, disk.sectors - reserve + 1, count, align)
    numbers = rng.sample(range(1, 129), len(found))
    if rng.random() < 0.5:
        numbers = list(range(1, len(found) + 1))
    for number, (start, size) in zip(numbers, found):
        guid = rng.choice(GPT_USUAL) if rng.random() < 0.8 else random_guid(rng)
        partition = Partition(number, start, size, guid, uuid=random_guid(rng))
        partition.name = rng.choice(["", "Basic data partition", "data", "A name of some length 1234567890"])
        partition.attributes = rng.choice(["", "", "GUID:63", "RequiredPartition GUID:63"])
        disk.partitions.append(partition)
    disk.partitions.sort(key=lambda one: one.number)


def random_disk(rng):
    sector = rng.choice([512, 512, 512, 4096])
    label = rng.choice(["dos", "gpt"])
    size = int(SMALLEST * (LARGEST / SMALLEST) ** rng.random())
    tool = "fdisk" if sector == 4096 else rng.choice(["sfdisk", "sgdisk"]) if label == "gpt" else "sfdisk"
    while True:
        identifier = random_guid(rng) if label == "gpt" else f"0x{rng.randrange(1, 1 << 32):08x}"
        disk = Disk(label, tool, sector, size // sector, identifier, [])
        (random_gpt if label == "gpt" else random_mbr)(rng, disk)
        if disk.partitions and capturable(disk):
            return disk


def random_disks(rng):
    return [random_disk(rng) for _ in range(rng.choice([1, 1, 2, 3, 4]))]
