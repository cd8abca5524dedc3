// Makes the pictures of the dashboard for the README, with two minutes of a plant at work:
//   TOVIK_CLOUD=... TOVIK_PLANT=... TOVIK_CHROMIUM=... node screenshots.mjs FOLDER
// Then scripts/small_png.py makes them as small as those that are there.
import assert from 'node:assert/strict';
import { join } from 'node:path';
import { Browser, Cloud } from './support.mjs';

const seconds = 125;
const folder = process.argv[2];
assert.ok(folder, 'say which folder the pictures go to');

/** A panel that reads, and an operator who writes now and then, until it is over. */
async function atWork(cloud, isOver) {
    const panel = await cloud.login();
    await cloud.post('imonitor/group/list', { token: panel });
    for (const group of ['boiler', 'hall', 'energy', 'recipes']) {
        await cloud.post('imonitor/group/dataitems', { token: panel, group_id: group });
    }
    const operator = await cloud.login('visitor@example.com', 'guest');
    for (let round = 0; !isOver(); round += 1) {
        for (const item of ['boiler-flow', 'boiler-return', 'hall-co2', 'energy-power']) {
            await cloud.value(panel, item);
        }
        if (round % 15 === 2) {
            const value = 60 + (round / 15) * 2;
            await cloud.post('imonitor/dataitem/setValue',
                             { token: operator, dataitem_id: 'boiler-setpoint', value: Math.round(value) });
        }
        await new Promise((resolve) => { setTimeout(resolve, 1000); });
    }
}

const browser = await Browser.start();
const cloud = await Cloud.start();
let over = false;
const work = atWork(cloud, () => over);
try {
    const page = await browser.open(cloud, { viewport: { width: 1280, height: 880 } });
    for (const fault of ['errorcode:code=4,path=value,count=2', 'delay:ms=250,path=write']) {
        await page.getByLabel('As text').fill(fault);
        await page.getByRole('button', { name: 'Switch on' }).click();
    }
    await page.waitForTimeout(seconds * 1000);
    await page.getByLabel('Kind of fault').selectOption('delay');
    await page.getByLabel('ms', { exact: true }).fill('800');
    await page.locator('#fault-form').getByLabel('Requests').selectOption('value');
    for (const [scheme, name] of [['light', 'dashboard.png'], ['dark', 'dashboard-dark.png']]) {
        await page.emulateMedia({ colorScheme: scheme });
        await page.waitForTimeout(1500);
        await page.screenshot({ path: join(folder, name) });
    }
} finally {
    over = true;
    await work;
    await browser.stop();
    await cloud.stop();
}
