'use strict';

// The questions of docs/fleet.md, asked of a thousand documents by DuckDB.

const assert = require('node:assert/strict');
const {spawnSync} = require('node:child_process');
const fs = require('node:fs');
const os = require('node:os');
const path = require('node:path');
const {after, before, test} = require('node:test');

const {DuckDBInstance} = require('@duckdb/node-api');
const {machines, program, root} = require('./pages.js');

const COUNT = 1000;
// Machines without errors, which start from the disk that Windows lies on.
const CASES = ['bios-laptop', 'server-many-disks', 'spanned-dynamic', 'uefi-workstation'];

// The documents that differ from their case in what a question asks.
const ON_OTHER_DISK = 401;    // of server-many-disks: Windows lies on disk 1
const TOO_LONG = 802;         // of spanned-dynamic: C: reaches beyond its partition
const SHARED = [100, 600];    // of bios-laptop: two machines whose disk has the same signature
const SAME_MACHINE = [204, 208];  // of bios-laptop: two documents of one machine
const FORMAT_3 = 303;         // of uefi-workstation: format 3 leaves the partitions of its GPT disks out
const UNREADABLE = 999;

const numbered = (number) => String(number).padStart(4, '0');
const fileOf = (number) => `machine-${numbered(number)}.xml`;
const nameOf = (number) => `MACHINE-${numbered(number === SAME_MACHINE[1] ? SAME_MACHINE[0] : number)}`;
// The number that makes the ids of a document's disks different from those of all others.
const idOf = (number) => number === SHARED[1] ? SHARED[0] : number === SAME_MACHINE[1] ? SAME_MACHINE[0] : number;

function replacedInVolume(document, letter, element, from, to) {
  const volumes = document.split(/(?=<volume\d+>)/);
  return volumes
      .map((volume) => volume.includes(`<VolumeLetter>${letter}</VolumeLetter>`)
              ? volume.replaceAll(`<${element}>${from}</${element}>`, `<${element}>${to}</${element}>`)
              : volume)
      .join('');
}

const read = (name, format) =>
    fs.readFileSync(path.join(machines, name, `expected/format${format}.xml`), 'utf8');

function documentOf(number, texts) {
  const ids = numbered(idOf(number));
  let document =
      (number === FORMAT_3 ? read(CASES[number % CASES.length], 3) : texts[number % CASES.length])
          .replace(/<CSName>[^<]*</, `<CSName>${nameOf(number)}<`)
          // The first digits of each disk's id and the last ones of its signature, so that the disks of a machine
          // stay different too.
          .replace(/<disk_guid>\{(?!0{8}).{4}/g, `<disk_guid>{${ids}`)
          .replace(/<m_dwDiskSignature>([1-9]\d*)</g, (_, value) => `<m_dwDiskSignature>${
              Number(value) % 100000 * 10000 + idOf(number)}<`);
  if (number === ON_OTHER_DISK) {
    document = replacedInVolume(document, 'C:\\', 'SystemVolume', 1, 0);
    document = replacedInVolume(document, 'D:\\', 'SystemVolume', 0, 1);
  }
  if (number === TOO_LONG) {
    document = replacedInVolume(document, 'C:\\', 'm_Size', 127928369152, 127929000000);
  }
  return number === UNREADABLE ? document.slice(0, document.length / 2) : document;
}

let folder;
let connection;
let answers;  // by heading: the rows

// The SQL of the page by the heading above it.
function questions() {
  const page = fs.readFileSync(path.join(root, 'docs/fleet.md'), 'utf8');
  return page.split(/^## /m).slice(1).map((section) => ({
    heading: section.split('\n')[0],
    sql: section.match(/```sql\n(.*?)```/s)[1],
  }));
}

before(async () => {
  folder = fs.mkdtempSync(path.join(os.tmpdir(), 'orvane-fleet-'));
  const texts = CASES.map((name) => read(name, 2));
  const files = Array.from({length: COUNT}, (_, number) => fileOf(number));
  files.forEach((file, number) => fs.writeFileSync(path.join(folder, file), documentOf(number, texts)));
  fs.writeFileSync(path.join(folder, 'list.txt'), files.join('\n'));
  const lines = fs.openSync(path.join(folder, 'fleet.jsonl'), 'w');
  const {status} = spawnSync(program, ['show', '--json', '--lines', '--from', 'list.txt'],
                             {cwd: folder, stdio: ['ignore', lines, 'ignore']});
  fs.closeSync(lines);
  assert.equal(status, 2);

  connection = await (await DuckDBInstance.create()).connect();
  answers = new Map();
  for (const {heading, sql} of questions()) {
    const reader = await connection.runAndReadAll(
        sql.replace(`'fleet.jsonl'`, `'${path.join(folder, 'fleet.jsonl')}'`));
    answers.set(heading, reader.getRowObjectsJson());
  }
});

after(() => {
  connection?.closeSync();
  fs.rmSync(folder, {recursive: true, force: true});
});

test('every document is a row', async () => {
  const reader = await connection.runAndReadAll(
      'SELECT count(*)::INTEGER AS documents, count(DISTINCT file)::INTEGER AS files FROM documents');
  assert.deepEqual(reader.getRowObjectsJson(), [{documents: COUNT, files: COUNT}]);
});

test('the document that cannot be read is told', () => {
  const rows = answers.get('Which documents cannot be read?');
  assert.deepEqual(rows.map(({file}) => file), [fileOf(UNREADABLE)]);
  assert.ok(rows[0].reason.length > 0);
});

test('the machine that starts from another disk is told', () => {
  assert.deepEqual(answers.get('Which machines start from another disk than Windows lies on?'), [
    {file: fileOf(ON_OTHER_DISK), machine: nameOf(ON_OTHER_DISK), starts_from: [0], windows_on: [1]},
  ]);
});

const refused = (number) => answers.get('Which volumes does verify refuse?').filter(({file}) => file === fileOf(number));

test('the volume that verify refuses is told', () => {
  const rows = refused(TOO_LONG);
  assert.deepEqual([...new Set(rows.map((row) => [row.machine, row.volume].join(' ')))],
                   [`${nameOf(TOO_LONG)} volume C:\\`]);
  assert.match(rows[0].code, /^D\d{3}$/);
});

test('the volumes on disks that verify refuses are told', () => {
  const rows = refused(FORMAT_3);
  // Those of machine.json that have a partition; two of them have no GUID.
  const guids = ['01', '04'].map((end) => `volume \\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a${end}}\\`);
  assert.deepEqual(new Set(rows.map(({code}) => code)), new Set(['D013']));
  assert.equal(rows.length, 6);
  for (const volume of ['volume C:\\', 'volume D:\\', ...guids]) {
    assert.equal(rows.filter((row) => row.volume === volume).length, 1, volume);
  }
});

test('no other volume is told', () => {
  const rows = answers.get('Which volumes does verify refuse?');
  assert.deepEqual([...new Set(rows.map(({file}) => file))], [FORMAT_3, TOO_LONG].map(fileOf));
});

test('the disk id of two machines is told', () => {
  const rows = answers.get('Which disk ids occur on two machines?');
  assert.deepEqual(rows.map(({machines}) => machines), [SHARED.map(nameOf)]);
});
