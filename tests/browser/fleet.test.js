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

function documentOf(number, texts) {
  const ids = numbered(idOf(number));
  let document =
      texts[number % CASES.length]
          .replace(/<CSName>[^<]*</, `<CSName>${nameOf(number)}<`)
          // The last digits of each disk's id and signature.
          .replace(/<disk_guid>\{(?!0{8})(.{32}).{4}\}</g, `<disk_guid>{$1${ids}}<`)
          .replace(/<m_dwDiskSignature>([1-9]\d*)</g, (_, value) => `<m_dwDiskSignature>${
              BigInt(value) / 10000n * 10000n % 4000000000n + BigInt(idOf(number))}<`);
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
  const texts =
      CASES.map((name) => fs.readFileSync(path.join(machines, name, 'expected/format2.xml'), 'utf8'));
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

test('the volume that verify refuses is told', () => {
  const rows = answers.get('Which volumes does verify refuse?');
  assert.deepEqual([...new Set(rows.map((row) => [row.file, row.machine, row.volume].join(' ')))],
                   [`${fileOf(TOO_LONG)} ${nameOf(TOO_LONG)} volume C:\\`]);
  assert.match(rows[0].code, /^D\d{3}$/);
});

test('the disk id of two machines is told', () => {
  const rows = answers.get('Which disk ids occur on two machines?');
  assert.deepEqual(rows.map(({machines}) => machines), [SHARED.map(nameOf)]);
});
