#include "tools/orvane/help_texts.h"

namespace host {

const HelpText kProgramHelp = {
    R"(orvane - describes this machine to a backup agent, as Orvane.dll beside this program sees it, and reads
the documents that were captured.
)",
    R"(Exit codes:
  0  done
  1  nothing could be told, or something that was selected cannot be backed up; standard error says why. For
     documents: one has errors
  2  the arguments or the machine description cannot be used, a document cannot be read

Without --machine every command that asks the system describes the system that it runs on. Under Wine that is Wine itself, which
has little to show: --machine FILE describes another machine, for example one of examples/machines.

orvane COMMAND --help lists the arguments of a command.)"};

const HelpText kCaptureHelp = {
    R"(Captures the environment document: disks, partitions, volumes and system information as XML.
It describes the system it runs on, or the machine of --machine.)",
    R"(The document is written as UTF-8, indented; errors go to standard error. A volume given with --volume that
cannot be backed up fails the capture, and the reasons are shown. The size query that comes before every
capture makes --log and --verbose tell everything twice. --output writes a file whole or not at all, over an
existing one with --force only.

Examples:
  orvane capture --output environment.xml
  orvane capture --volume "\\?\Volume{0b0a2f5e-0000-0000-0000-100000000000}\"
  orvane capture --machine examples/machines/bios-laptop --verbose)"};

const HelpText kDumpHelp = {
    R"(Prints what the library finds as lines for support staff, by KIND:
  wmi       processor, boot configuration, computer system and operating system
  disks     every disk with its partition table
  volumes   every volume; those that cannot be backed up are told on standard error in the end
  firmware  the library's version, and whether BIOS or UEFI firmware started the machine
It describes the system it runs on, or the machine of --machine.)",
    R"(What could not be found out goes to standard error, as "error: ...", in its place among the lines. --output writes
a file whole or not at all, over an existing one with --force only.

Exit codes:
  0  the dump told of its subject, perhaps with errors beside
  1  it told nothing of it: no line at all, or in a dump of the volumes or the firmware nothing but the lines
     around it; or it broke off. With --output no file is written then
  2  the arguments or the machine description cannot be used

Examples:
  orvane dump disks
  orvane dump volumes --machine examples/machines/bios-laptop --output volumes.txt)"};

const HelpText kCheckHelp = {
    R"(Says for every disk and every volume whether it can be backed up, and why not.
It checks the system it runs on, or the machine of --machine.)",
    R"(A volume given with --volume is judged as a capture judges it, by the GUID path, the GUID or the device name.

With --json a program reads this object, in UTF-8:
  {"schema": 1,
   "disks": [{"index": 0, "canBackup": true, "reasons": [], "codes": []}],
   "volumes": [{"id": GUID-PATH, "device": NAME, "mountPoints": [PATH], "canBackup": false, "reasons": [TEXT],
                "codes": ["R001"]}],
   "selected": [{"volume": AS-GIVEN, "canBackup": true, "reasons": [], "codes": []}]}
Each code belongs to the reason in the same place; docs/reasons.md lists them.
A volume without a GUID has the id "". Where the check failed, "disks", "volumes" or a selected volume's
"canBackup" is null.

Exit codes:
  0  every volume given with --volume can be backed up, or none was given
  1  one of them cannot, or the check failed: standard error says why
  2  the arguments or the machine description cannot be used

Colour is used on a terminal, unless the environment has a variable NO_COLOR.

Examples:
  orvane check
  orvane check --volume "\\?\Volume{0b0a2f5e-0000-0000-0000-100000000000}\" --json
  orvane check --machine examples/machines/spanned-dynamic)"};

const HelpText kRecordHelp = {
    R"(Records a machine as a description that replays it: --machine FILE of all commands then describes that machine.
It records the system it runs on, or the machine of --machine. It only reads.)",
    R"(All questions about disks, volumes, names, WMI, firmware and start options are asked and described. The proof
then asks the description the same questions, and compares what the library makes of the machine and of its
description. Every difference is a line on standard output: "unexplained" is a difference, "explained" follows
from a call that did not answer, "changes by itself" is free space, a time or a clock speed.

Run it as an administrator: otherwise disks and volumes refuse most questions, which is recorded too. In format 1
the library opens disks and volumes for writing, without writing; --no-proof leaves the library out.

--redact replaces names, serial numbers and ids, in the description and in the observations alike; models, sizes and
errors stay (docs/redaction.md). If one of them is still in another value, nothing is written. Without --redact the last
line says how many of them the file holds.

Exit codes:
  0  the description is written and proved
  1  nothing was written
  2  the arguments or the machine description cannot be used
  3  the description is written, but something is unexplained or unproved

Examples:
  orvane record --output machine.json
  orvane record --output machine.json --observations observations.json --no-proof
  orvane record --output machine.json --redact --map replacements.json
  orvane record --machine examples/machines/bios-laptop --output machine.json)"};

const HelpText kProveHelp = {
    R"(Describes the machine of an observations file anew, and compares the answers of the description with the observed
ones. The machine itself is not needed.)",
    R"(Exit codes:
  0  everything is explained
  1  the machine of the file cannot be described
  2  the file cannot be used
  3  something is unexplained; standard output says what

Example:
  orvane prove observations.json)"};

}  // namespace host
