'use strict';

// The pages of `orvane report` in a browser.

const assert = require('node:assert/strict');
const fs = require('node:fs');
const {after, before, test} = require('node:test');

const axe = require('axe-core');
const {launch, open} = require('./browser.js');
const {expectedWidths} = require('./map_rule.js');
const {hostile, makePages} = require('./pages.js');

const TELEPHONE = {width: 360, scheme: 'light'};
const DESKTOP = {width: 1600, scheme: 'dark'};

let browser;
let made;
let views;  // of every page on both screens: {name, screen, heard, faults, passes, wide, maps}

// The elements that reach beyond the right edge.
function wideElements() {
  const edge = document.documentElement.clientWidth;
  const wide = [...document.querySelectorAll('body *')]
      .filter((element) => element.getBoundingClientRect().right > edge + 0.5)
      .map((element) => element.outerHTML.slice(0, 100));
  return document.documentElement.scrollWidth > edge ? ['the page', ...wide] : wide;
}

// The maps that are seen: for each its width and its parts, and the sizes in the table below it.
function seenMaps() {
  const boxOf = (element) => element.getBoundingClientRect();
  const maps = [];
  for (const disk of document.querySelectorAll('.disk')) {
    const map = [...disk.querySelectorAll('svg.map')].find((svg) => svg.checkVisibility());
    if (map) {
      maps.push({
        left: boxOf(map).left,
        width: boxOf(map).width,
        pieces: [...map.querySelectorAll('svg.piece > rect')].map((rect) => ({
          left: boxOf(rect.parentElement).left,
          width: rect.parentElement.width.baseVal.value * boxOf(map).width / map.viewBox.baseVal.width,
        })),
        sizes: [...disk.querySelectorAll('.parts tbody tr')].map(
            (row) => Number(row.querySelector('td:last-child .under').textContent)),
      });
    }
  }
  return maps;
}

async function view({name, file}, screen) {
  const heard = [];
  const page = await open(browser, file, screen, heard);
  const maps = await page.evaluate(seenMaps);
  const wide = await page.evaluate(wideElements);
  await page.evaluate(axe.source);
  const found = await page.evaluate(() => globalThis.axe.run());
  await page.close();
  return {
    name: `${name} at ${screen.width} px, ${screen.scheme}`,
    screen, heard, wide, maps,
    faults: found.violations.map(({id, nodes}) => `${id}: ${nodes[0].html}`),
    passes: found.passes.map(({id}) => id),
  };
}

before(async () => {
  made = makePages();
  browser = await launch();
  views = [];
  for (const page of made.pages) {
    views.push(await view(page, TELEPHONE), await view(page, DESKTOP));
  }
});

after(async () => {
  await browser?.close();
  fs.rmSync(made.folder, {recursive: true, force: true});
});

test('a page of every case was made', () => {
  assert.ok(made.pages.length > 10);
});

test('a page says nothing on the console and asks for nothing', () => {
  for (const {name, heard} of views) {
    assert.deepEqual(heard, [], name);
  }
});

test('axe-core finds nothing', () => {
  for (const {name, faults, passes, maps} of views) {
    assert.deepEqual(faults, [], name);
    const rules = ['color-contrast', 'document-title', 'heading-order', 'region'];
    for (const rule of maps.length > 0 ? [...rules, 'svg-img-alt'] : rules) {
      assert.ok(passes.includes(rule), `${name}: ${rule}`);
    }
  }
});

test('nothing is wider than the screen', () => {
  for (const {name, wide} of views) {
    assert.deepEqual(wide, [], name);
  }
});

test('the widths of a map follow the rule', () => {
  assert.ok(views.reduce((sum, {maps}) => sum + maps.length, 0) > 20);
  for (const {name, screen, maps} of views) {
    for (const map of maps) {
      assert.equal(map.width, screen === TELEPHONE ? 320 : 680, name);
      const expected = expectedWidths(map.sizes, map.width);
      assert.equal(map.pieces.length, expected.length, name);
      let left = map.left;
      map.pieces.forEach((piece, index) => {
        assert.ok(Math.abs(piece.width - expected[index]) < 0.01, `${name}: ${piece.width} ${expected[index]}`);
        assert.ok(Math.abs(piece.left - left) < 0.1, name);
        left += expected[index];
      });
    }
  }
});

test('the table of a disk has the partitions of the document', async () => {
  for (const {name, document, file} of made.pages.filter(({name}) => name.endsWith('-2'))) {
    const page = await open(browser, file, DESKTOP);
    const [said, shown] = await page.evaluate((xml) => {
      const text = (element, tag) => element.querySelector(`:scope > ${tag}`).textContent;
      const disks = [...new DOMParser().parseFromString(xml, 'text/xml').querySelectorAll('DiskDrives > *')];
      const rowsOf = (disk) => [...disk.children].filter(
          (row) => row.tagName.startsWith('y') && ['Primary', 'Logical'].includes(text(row, 'parttype')));
      // The table divides the partitions of dynamic disks.
      const basic = disks.filter(
          (disk) => disk.tagName.startsWith('x') &&
              rowsOf(disk).every((row) => text(row, 'mbr_partition_type') !== '66' &&
                                         !text(row, 'gpt_partition_type').startsWith('{AF9B60A0')));
      const said = basic.filter((disk) => rowsOf(disk).length > 0).map((disk) => [
        `disk-${text(disk, 'index')}`,
        rowsOf(disk).map((row) => `${text(row, 'start')} ${text(row, 'size')}`).sort(),
      ]);
      const shown = said.map(([id]) => [
        id,
        [...document.querySelectorAll(`[aria-labelledby=${id}] .parts tbody tr`)]
            .filter((row) => /Partition \d/.test(row.textContent))
            .map((row) => [...row.querySelectorAll('td .under')].map((cell) => cell.textContent).join(' '))
            .sort(),
      ]);
      return [said, shown];
    }, fs.readFileSync(document, 'utf8'));
    assert.deepEqual(shown, said, name);
    await page.close();
  }
});

test('hostile texts show as texts', async () => {
  const {file} = made.pages.find(({name}) => name === 'hostile');
  const page = await open(browser, file, DESKTOP);
  const seen = await page.evaluate(() => ({
    title: document.title,
    heading: document.querySelector('h1').textContent,
    labels: [...document.querySelectorAll('.parts .label')].map((label) => label.textContent),
    reasons: [...document.querySelectorAll('.reason')].map((reason) => reason.textContent),
    tips: [...document.querySelectorAll('.piece title')].map((tip) => tip.textContent),
    elements: document.querySelectorAll('script, b').length,
  }));
  await page.close();
  assert.equal(seen.elements, 0);
  assert.equal(seen.title, `${hostile}: disks and volumes`);
  assert.equal(seen.heading, hostile);
  assert.ok(seen.labels.some((label) => label.includes(hostile)));
  assert.deepEqual(seen.reasons, [hostile, hostile, hostile]);
  assert.ok(seen.tips.some((tip) => tip.includes(hostile)));
});

test('a page has no scripts, and no address besides those in itself', async () => {
  for (const {name, file} of made.pages.filter(({name}) => name !== 'hostile')) {
    const text = fs.readFileSync(file, 'utf8');
    assert.doesNotMatch(text, /<script|<link(?! rel="icon" href="data:,")|<img|@import|javascript:|https?:/, name);
  }
});

test('the keyboard reaches every link, and every link leads to a place of the page', async () => {
  const {file} = made.pages.find(({name}) => name === 'bios-laptop-2');
  const page = await open(browser, file, DESKTOP);
  const links = await page.evaluate(() => [...document.querySelectorAll('a')].map((link) => link.hash));
  assert.ok(links.length >= 5);
  for (const hash of links) {
    await page.keyboard.press('Tab');
    assert.equal(await page.evaluate(() => document.activeElement.hash), hash);
    assert.equal(await page.evaluate((id) => document.querySelectorAll(id).length, hash), 1);
  }
  await page.close();
});

test('a screen reader finds the maps, the tables and the headings', async () => {
  const {file} = made.pages.find(({name}) => name === 'spanned-dynamic-2');
  const page = await open(browser, file, DESKTOP);
  const nodes = [];
  const collect = (node) => {
    nodes.push(`${node.role}: ${node.name ?? ''}`);
    (node.children ?? []).forEach(collect);
  };
  collect(await page.accessibility.snapshot({interestingOnly: false}));
  await page.close();
  for (const disk of [0, 1, 2]) {
    assert.equal(nodes.filter((node) => node.startsWith(`image: Map of disk ${disk} to scale.`)).length, 1);
    assert.ok(nodes.includes(`table: Parts of disk ${disk}, from its beginning to its end`));
  }
  for (const name of ['Disks', 'Volumes', 'Backup check', 'Findings', 'System facts']) {
    assert.ok(nodes.includes(`heading: ${name}`), name);
  }
});

test('a page prints on white A4 paper', async () => {
  const {file} = made.pages.find(({name}) => name === 'server-many-disks-2');
  const page = await open(browser, file, {width: 680, scheme: 'dark', media: 'print'});
  assert.equal(await page.evaluate(() => getComputedStyle(document.documentElement).backgroundColor),
               'rgb(255, 255, 255)');
  assert.deepEqual((await page.evaluate(seenMaps)).map((map) => map.width), [680, 680, 680, 680]);
  const pdf = Buffer.from(await page.pdf({preferCSSPageSize: true})).toString('latin1');
  await page.close();
  const boxes = [...pdf.matchAll(/\/MediaBox \[0 0 ([\d.]+) ([\d.]+)\]/g)];
  assert.ok(boxes.length > 0);
  for (const [, width, height] of boxes) {
    // 210 by 297 mm in points of 1/72 inch.
    assert.ok(Math.abs(width - 595.28) < 1 && Math.abs(height - 841.89) < 1, `${width} ${height}`);
  }
});
