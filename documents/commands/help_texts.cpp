#include "documents/commands/help_texts.h"

namespace documents {

const HelpText kProgramHelp = {
    R"(orvane - reads the documents that Orvane.dll captures of Windows machines.
)",
    R"(Exit codes:
  0  done
  1  the answer is no: a document has errors, documents differ
  2  the arguments cannot be used, a document cannot be read, or the output cannot be written

orvane COMMAND --help lists the arguments of a command.)"};

const HelpText kShowHelp = {
    R"(Shows captured documents: each machine's disks with their partitions, gaps and volumes, as a tree.)",
    R"(A partition's volume stands below it, with its letter, label, file system and size; a volume on several disks
stands below each of them. The boot volume is the one that the machine starts from, the system volume the one
that holds Windows.

With --json a program reads one object, {"schema": 1, "documents": [...]}; with --lines it reads an object a
line for each document, unreadable ones included. docs/schema/show.schema.json describes both.

Exit codes:
  0  all documents were shown
  2  the arguments cannot be used, a document cannot be read, or the output cannot be written

Colour is used on a terminal, unless the environment has a variable NO_COLOR.

Examples:
  orvane show environment.xml
  orvane show --json --lines --from documents.txt
  orvane show --code-page 1252 - < environment.xml)"};

const HelpText kVerifyHelp = {
    R"(Says whether machines can be restored from captured documents, and what is missing or wrong.)",
    R"(Each finding has a code, a severity and a place. An error keeps something from being restored; a note is for
whoever restores. docs/reasons.md lists the codes with what to do.

With --json a program reads one object, {"schema": 1, "documents": [...]}; docs/schema/verify.schema.json
describes it.

Exit codes:
  0  no document has an error
  1  a document has errors
  2  the arguments cannot be used, a document cannot be read, or the output cannot be written

Examples:
  orvane verify environment.xml
  orvane verify --json --from documents.txt)"};

const HelpText kReportHelp = {
    R"(Writes a page about the machine of a captured document, to be printed or read in a browser.)",
    R"(The page has the machine at a glance, a map of each disk with a table of the same, the volumes, the findings of
orvane verify, and all system facts. With --verdicts it also has what orvane check said of the machine. It is one
HTML file, without scripts; nothing else has to be beside it. The same document always gives the same page.

A map is to scale, but no part of it is narrower than 3 pixels: a width is the larger of 3 pixels and the share,
and what small parts gain is taken from the others in proportion. A disk with more than 226 parts (on a narrow page
106) has its table alone.

Exit codes:
  0  the page was written
  2  the arguments cannot be used, a file cannot be read, or the page cannot be written

Examples:
  orvane report environment.xml --output environment.html
  orvane check --json > check.json
  orvane report environment.xml --verdicts check.json --output environment.html --force)"};

const HelpText kPlanHelp = {
    R"(Plans how the disks of a captured document are made again: a script for sfdisk for each disk, and plan.md.)",
    R"(plan.md tells for people what goes where, what the document does not say and was assumed, and what cannot be made
again, with the codes of docs/reasons.md. Nothing is written to a disk, and no script runs by itself.

A target is looked at and never written. It is refused if it is too small, has other sectors than the disk, is the
target of two disks, or is not blank: its first and its last MiB must be zero. On Windows it must be an image.

Exit codes:
  0  the plan was made
  1  a target was refused, and nothing was written; or the plan was made, but a disk or a volume cannot be made again
  2  the arguments cannot be used, the document or a target cannot be read, or the output cannot be written

Examples:
  orvane plan environment.xml --output plan
  orvane plan environment.xml --output plan --disk 0 --target 0=/dev/sdb
  orvane plan environment.xml --output plan --target-size "0=500 GB" --sector-size 0=512)"};

const HelpText kDiffHelp = {
    R"(Says what changed on a machine between two captured documents, OLD and NEW, which may have different formats.)",
    R"(DOC stands for OLD and NEW, in this order. Disks, partitions and volumes are recognised by their identifiers,
not by their numbers; where they have none, by a guess, which is marked as such. docs/diff.md explains what is
compared and what the kinds of changes mean.

With --json a program reads one object; docs/schema/diff.schema.json describes it.

Exit codes:
  0  nothing changed
  1  something changed
  2  the arguments cannot be used, a document cannot be read or captured, or the output cannot be written

Examples:
  orvane diff monday.xml friday.xml
  orvane diff --json --all monday.xml friday.xml
  orvane diff --live monday.xml          (on Windows)
  orvane diff monday.xml - < friday.xml)"};

}  // namespace documents
