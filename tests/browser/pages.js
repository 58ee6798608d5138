'use strict';

// The pages that the tests look at: reports of the documents of all cases, and of one with hostile texts.

const {execFileSync} = require('node:child_process');
const fs = require('node:fs');
const os = require('node:os');
const path = require('node:path');

const root = path.resolve(__dirname, '../..');
const machines = path.join(root, 'examples/machines');
const program = process.env.ORVANE || path.join(root, 'build/native/bin/orvane');

const hostile = `<script>document.title = 'run'</script> "quoted" 'single' & <b>bold</b>`;

// Runs `orvane report` and returns the page's path.
function report(document, name, folder, verdicts) {
  const file = path.join(folder, `${name}.html`);
  const arguments_ = ['report', document, '--output', file];
  if (verdicts) {
    arguments_.push('--verdicts', verdicts);
  }
  execFileSync(program, arguments_, {stdio: ['ignore', 'ignore', 'inherit']});
  return file;
}

function escapedForXml(text) {
  return text.replace(/&/g, '&amp;').replace(/</g, '&lt;');
}

// The workstation with a text in the place of its name, its labels and more.
function hostileDocument(folder) {
  const source = path.join(machines, 'uefi-workstation/expected/format2.xml');
  const text = fs.readFileSync(source, 'utf8');
  const changed =
      text.replace(/<(CSName|Label|FileSystem|Model|Name|interface)>[^<]*</g, `<$1>${escapedForXml(hostile)}<`);
  const file = path.join(folder, 'hostile.xml');
  fs.writeFileSync(file, changed);
  return file;
}

// A check of which all texts are hostile.
function hostileVerdicts(folder) {
  const verdict = {canBackup: false, reasons: [hostile]};
  const file = path.join(folder, 'hostile.json');
  fs.writeFileSync(file, JSON.stringify({
    disks: [{index: 0, ...verdict}],
    volumes: [{id: hostile, device: hostile, mountPoints: [hostile], ...verdict}],
    selected: [{volume: hostile, ...verdict}],
  }));
  return file;
}

// Makes all pages in a folder of their own. Returns {folder, pages: [{name, document, file}], hostile}.
function makePages() {
  const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'orvane-pages-'));
  const pages = [];
  for (const machine of fs.readdirSync(machines)) {
    for (const format of [1, 2, 3]) {
      const document = path.join(machines, machine, `expected/format${format}.xml`);
      if (fs.existsSync(document)) {
        const name = `${machine}-${format}`;
        const verdicts = path.join(machines, machine, 'expected/check.json');
        pages.push({name, document, file: report(document, name, folder, verdicts)});
      }
    }
  }
  const document = hostileDocument(folder);
  const file = report(document, 'hostile', folder, hostileVerdicts(folder));
  pages.push({name: 'hostile', document, file});
  return {folder, pages};
}

module.exports = {hostile, machines, makePages, program, root};
