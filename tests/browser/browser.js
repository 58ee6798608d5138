'use strict';

const {pathToFileURL} = require('node:url');
const puppeteer = require('puppeteer-core');

function launch() {
  return puppeteer.launch({
    executablePath: process.env.CHROMIUM || '/usr/bin/chromium',
    // The browser refuses to run as root in its sandbox.
    args: process.getuid() === 0 ? ['--no-sandbox'] : [],
  });
}

// Opens a page. `heard` receives what it should not say or do: console messages, errors, dialogs, requests for
// anything but the page itself.
async function open(browser, file, {width, scheme = 'light', media = 'screen'}, heard = []) {
  const page = await browser.newPage();
  const url = pathToFileURL(file).href;
  page.on('console', (message) => heard.push(`console: ${message.text()}`));
  page.on('pageerror', (error) => heard.push(`error: ${error}`));
  page.on('dialog', (dialog) => {
    heard.push(`dialog: ${dialog.message()}`);
    dialog.dismiss();
  });
  page.on('request', (request) => {
    if (request.url() !== url) {
      heard.push(`request: ${request.url()}`);
    }
  });
  // Both at once: each of Puppeteer's own two functions undoes the other.
  const session = await page.createCDPSession();
  await session.send('Emulation.setEmulatedMedia',
                     {media, features: [{name: 'prefers-color-scheme', value: scheme}]});
  await page.setViewport({width, height: 900});
  await page.goto(url);
  return page;
}

module.exports = {launch, open};
