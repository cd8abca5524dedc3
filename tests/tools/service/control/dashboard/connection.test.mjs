// A service that goes and comes back, and one that wants a token.
import assert from 'node:assert/strict';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { assertNoTrouble, Browser, Cloud, shows, until, valueOf } from './support.mjs';

let browser;

before(async () => { browser = await Browser.start(); });
after(async () => { await browser.stop(); });

test('a service that is gone is missed, and welcome when it is back', async () => {
    let cloud = await Cloud.start();
    const page = await browser.open(cloud);
    try {
        await cloud.login();
        await until(async () => await page.locator('#request-rows tr').count() === 1, 'a request');
        await page.getByLabel('As text').fill('empty:path=write');
        await page.getByRole('button', { name: 'Switch on' }).click();
        await shows(page.locator('#faults-active'), '1 active');
        await page.getByRole('button', { name: 'Edit Sensor offset' }).click();
        await page.getByLabel('New value of Sensor offset').fill('5');
        await page.locator('#group-filter').selectOption('Hall');
        await page.getByLabel('As text').fill('delay:ms=7');
        const trend = await page.locator('tr[data-item="hall-co2"] canvas').elementHandle();
        await cloud.stop();

        await shows(page.locator('#state'), 'No connection');
        await page.getByText('The service has not answered since').waitFor();
        await page.getByLabel('New value of Sensor offset').press('Enter');
        const problem = page.locator('tr[data-item="hall-offset"] .problem');
        await shows(problem, 'the service does not answer; try again when it is back');

        cloud = await Cloud.start(['--control-port', cloud.controlPort]);
        await page.locator('#state[data-state=live]').waitFor();
        await page.locator('#gone').waitFor({ state: 'hidden' });
        await shows(page.locator('#url'), cloud.url);
        await page.getByText('No request came yet.').waitFor();
        await shows(page.locator('#fault-list .quiet'), 'off');
        const cell = valueOf(page, 'boiler-flow');
        const old = await cell.textContent();
        await until(async () => await cell.textContent() !== old, 'for another value');
        assert.equal(await page.getByLabel('New value of Sensor offset').inputValue(), '5');
        assert.equal(await page.locator('#group-filter').inputValue(), 'hall');
        assert.equal(await page.getByLabel('As text').inputValue(), 'delay:ms=7');
        assert.ok(await trend.evaluate((canvas) => canvas.isConnected));
        assertNoTrouble(page, /ERR_CONNECTION_REFUSED|ERR_CONNECTION_RESET|ERR_EMPTY_RESPONSE/);
    } finally {
        await page.close();
        await cloud.stop();
    }
});

test('a service that comes back with another plant is shown anew', async () => {
    const folder = mkdtempSync(join(tmpdir(), 'tovik-plant-'));
    const plant = join(folder, 'plant.json');
    const group = (id) => ({ id, name: `Group ${id}`, items: [{ id: `in-${id}`, name: 'X', type: 'Bit' }] });
    writeFileSync(plant, JSON.stringify({
        accounts: [{ email: 'a', password: 'b', project: 'c' }], groups: [group('hall'), group('roof')] }));
    let cloud = await Cloud.start();
    const page = await browser.open(cloud);
    try {
        await page.locator('#group-filter').selectOption('Hall');
        await shows(page.locator('#matches'), '11 of 47');
        await cloud.stop();
        cloud = await Cloud.start(['--control-port', cloud.controlPort], plant);
        await shows(page.locator('#matches'), '1 of 2');
        assert.equal(await page.locator('#group-filter').inputValue(), 'hall');
        await cloud.stop();
        cloud = await Cloud.start(['--control-port', cloud.controlPort]);
        await shows(page.locator('#matches'), '11 of 47');
        await page.locator('#group-filter').selectOption('Recipes');
        await cloud.stop();
        cloud = await Cloud.start(['--control-port', cloud.controlPort], plant);
        await shows(page.locator('#matches'), '2 items');
        assert.equal(await page.locator('#group-filter').inputValue(), '');
    } finally {
        await page.close();
        await cloud.stop();
        rmSync(folder, { recursive: true });
    }
});

test('a token is asked for, tried, and kept for the tab', async () => {
    const folder = mkdtempSync(join(tmpdir(), 'tovik-token-'));
    const file = join(folder, 'token');
    writeFileSync(file, 'correct-horse-battery\n');
    const cloud = await Cloud.start(['--control-token-file', file]);
    const refused = /status of 401/;
    const page = await browser.open(cloud, { ready: '#token-dialog[open]' });
    try {
        assert.equal(await page.locator('tr[data-item]').count(), 0);
        const field = page.getByLabel('Token', { exact: true });
        assert.equal(await field.getAttribute('type'), 'password');
        await page.keyboard.type('a-wrong-token-altogether');
        await page.keyboard.press('Enter');
        await page.getByText('The service does not accept this token.').waitFor();
        for (const useless of ['a-tökén-beyond-ASCII', 'one with blanks']) {
            await field.fill(useless);
            await page.keyboard.press('Enter');
            await page.getByText('A token has visible ASCII characters only.').waitFor();
        }
        await field.fill('');
        await page.keyboard.type('correct-horse-battery');
        await page.keyboard.press('Enter');
        await page.locator('#state[data-state=live]').waitFor();
        await shows(page.locator('#matches'), '47 items');
        assertNoTrouble(page, refused);

        page.troubles = [];
        await page.reload();
        await page.locator('#state[data-state=live]').waitFor();
        assertNoTrouble(page);

        const other = await browser.open(cloud, { ready: '#token-dialog[open]' });
        assertNoTrouble(other, refused);
        await other.close();
    } finally {
        await page.close();
        await cloud.stop();
        rmSync(folder, { recursive: true });
    }
});
