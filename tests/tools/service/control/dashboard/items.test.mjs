// Values, trends, the filter, and changing a value, with few items and with many.
import assert from 'node:assert/strict';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, afterEach, before, beforeEach, test } from 'node:test';
import { assertNoTrouble, Browser, Cloud, holds, shows, until, valueOf } from './support.mjs';

let browser;
let cloud;
let page;

before(async () => {
    browser = await Browser.start();
    cloud = await Cloud.start();
});
after(async () => {
    await browser.stop();
    await cloud.stop();
});
beforeEach(async () => { page = await browser.open(cloud); });
afterEach(async () => {
    await page.close();
    assertNoTrouble(page);
});

const edit = (name) => page.getByRole('button', { name: `Edit ${name}`, exact: true });

test('values move, and their trends are drawn', async () => {
    const cell = valueOf(page, 'boiler-flow');
    const first = await cell.textContent();
    await until(async () => await cell.textContent() !== first, 'for another value');
    await holds(page, () => {
        const canvas = document.querySelector('tr[data-item="boiler-flow"] canvas');
        const pixels = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
        return pixels.some((byte) => byte !== 0);
    });
    const label = await page.locator('tr[data-item="boiler-flow"] canvas').getAttribute('aria-label');
    assert.match(label, /^Trend of Flow temperature: [\d.]+ to [\d.]+$/);
});

test('all groups and items are there', async () => {
    await shows(page.locator('#matches'), '47 items');
    const headings = await page.locator('tr.group th').allTextContents();
    assert.deepEqual(headings, ['Boiler Cellar, 12 items', 'Hall Building 2, 11 items',
                                'Énergie Substation, 10 items, read-only for clients',
                                'Recipes Line 1, 14 items']);
    await shows(valueOf(page, 'boiler-on'), 'on');
    await shows(valueOf(page, 'recipe-name'), 'Brötchen');
});

test('a value that is changed is what the service serves', async () => {
    await edit('Lüfterstufe').click();
    await page.getByLabel('New value of Lüfterstufe').fill('41');
    await page.getByRole('button', { name: 'Set', exact: true }).click();
    await shows(valueOf(page, 'hall-fan'), '41');
    await shows(page.locator('#notice'), 'Lüfterstufe is now 41');
    assert.equal(await cloud.value(await cloud.login(), 'hall-fan'), 41);
});

test('switches and texts are changed with their own types', async () => {
    await edit('Light').click();
    await page.getByLabel('New value of Light').selectOption('on');
    await page.getByRole('button', { name: 'Set', exact: true }).click();
    await edit('Display text').click();
    await page.getByLabel('New value of Display text').fill('42');
    await page.getByRole('button', { name: 'Set', exact: true }).click();
    await shows(valueOf(page, 'hall-display'), '42');
    const token = await cloud.login();
    assert.equal(await cloud.value(token, 'hall-light'), true);
    assert.equal(await cloud.value(token, 'hall-display'), '42');
});

test('a bad value is explained, and Escape leaves the value alone', async () => {
    const before = await valueOf(page, 'hall-offset').textContent();
    await edit('Sensor offset').click();
    const field = page.getByLabel('New value of Sensor offset');
    const problem = page.locator('tr[data-item="hall-offset"] .problem');
    await field.fill('many');
    await field.press('Enter');
    await shows(problem, '"many" is not a number');
    await field.fill('');
    await field.press('Enter');
    await shows(problem, '"" is not a number');
    page.troubles = [];
    await field.fill('40000');
    await field.press('Enter');
    await until(async () => /from -32768 to 32767/.test(await problem.textContent()),
                'for the range');
    // The browser notes every refusal itself.
    page.troubles = page.troubles.filter((text) => !/status of 400/.test(text));
    await field.press('Escape');
    await field.waitFor({ state: 'detached' });
    assert.equal(await valueOf(page, 'hall-offset').textContent(), before);
});

test('a line break in a text stays', async () => {
    const put = (value) => fetch(`${cloud.control}/items/hall-display`, {
        method: 'PUT', body: JSON.stringify({ value }) });
    const served = async () => cloud.value(await cloud.login(), 'hall-display');
    const field = page.getByLabel('New value of Display text');
    await put('one\ntwo');
    await shows(valueOf(page, 'hall-display'), 'one\ntwo');
    await edit('Display text').click();
    await field.press('End');
    await field.press('Control+End');
    await page.keyboard.type('/3');
    await page.keyboard.press('Shift+Enter');
    await page.keyboard.type('4');
    assert.equal(await page.locator('#filter').inputValue(), '');
    await page.keyboard.press('Enter');
    await field.waitFor({ state: 'detached' });
    assert.equal(await served(), 'one\ntwo/3\n4');

    await put('one\r\ntwo');
    await until(async () => await valueOf(page, 'hall-display').textContent() === 'one\r\ntwo',
                'for the other line break');
    await edit('Display text').click();
    await field.press('Enter');
    await field.waitFor({ state: 'detached' });
    assert.equal(await served(), 'one\r\ntwo');
});

test('a value is set once, however often it is submitted', async () => {
    let asked = 0;
    let letGo;
    const gate = new Promise((resolve) => { letGo = resolve; });
    await page.route(/\/items\//, async (route) => {
        asked += 1;
        await gate;
        await route.continue();
    });
    await edit('Lüfterstufe').click();
    const field = page.getByLabel('New value of Lüfterstufe');
    await field.fill('55');
    await field.press('Enter');
    await field.press('Enter');
    await until(() => asked > 0, 'for the first request');
    letGo();
    await shows(valueOf(page, 'hall-fan'), '55');
    assert.equal(asked, 1);
});

test('what a write does to a value that moves is told', async () => {
    const hint = (item) => page.locator(`tr[data-item="${item}"] .hint`);
    await edit('Pump speed').click();
    await shows(hint('boiler-pump'), 'Stops its generator until a restart.');
    await edit('Lüfterstufe').click();
    assert.equal(await hint('hall-fan').count(), 0);
    const holding = await Cloud.start(['--write-hold', '90']);
    const second = await browser.open(holding);
    try {
        await second.getByRole('button', { name: 'Edit Pump speed', exact: true }).click();
        await shows(second.locator('tr[data-item="boiler-pump"] .hint'),
                    'Stops its generator for 1 min 30 s.');
    } finally {
        await second.close();
        await holding.stop();
    }
});

/** The points that are drawn of an item that had these values at these seconds. */
function drawn(type, values) {
    return page.evaluate(async ([itemType, given]) => {
        const { Trends } = await import('/dashboard/trend.js');
        const trends = new Trends();
        const trend = trends.make({ name: 'X', type: itemType });
        trend.canvas.style.position = 'fixed';
        document.body.prepend(trend.canvas);
        given.forEach(([second, value]) => trend.add(second, value));
        trend.show(given.at(-1)[0]);
        const chart = window.Chart.getChart(trend.canvas);
        const { x, y } = chart.scales;
        const line = chart.getDatasetMeta(0).data.map((point, index) => [
            chart.data.datasets[0].data[index].x, point.skip ? null : chart.data.datasets[0].data[index].y]);
        const result = { line, range: [y.min, y.max], width: x.max - x.min,
                         words: trend.canvas.getAttribute('aria-label') };
        trends.clear();
        trend.canvas.remove();
        return result;
    }, [type, values]);
}

test('a trend outlives a reload of the page', async () => {
    const counted = () => page.evaluate(() => {
        const canvas = document.querySelector('tr[data-item="boiler-flow"] canvas');
        return window.Chart.getChart(canvas)?.data.datasets[0].data.length ?? 0;
    });
    await until(async () => await counted() >= 3, 'for some values');
    const before = await counted();
    await page.reload();
    await until(counted, 'for the trend to be drawn');
    assert.ok(await counted() >= before, `${await counted()} of ${before}`);
});

test('a trend has a gap where no value came', async () => {
    const { line, range, words } = await drawn('16Bit-INT', [[100, 10], [104, 20], [110, 20], [111, 30]]);
    assert.deepEqual(line, [[100, 10], [104, 20], [104, null], [110, 20], [111, 30]]);
    assert.ok(range[0] > 0 && range[1] < 40, `${range}`);
    assert.equal(words, 'Trend of X: 10 to 30');
});

test('a trend of texts shows those that it has, and forgets the others', async () => {
    const many = Array.from({ length: 400 }, (_, second) => [second, `old ${second}`]);
    const { line, words } = await drawn('String', [...many, [900, 'b'], [901, 'a'], [902, 'b']]);
    assert.deepEqual(line.filter(([, place]) => place !== null), [[900, 1], [901, 0], [902, 1]]);
    assert.equal(words, 'Trend of X: changing');
});

test('a field that is being edited outlives updates', async () => {
    await edit('Pump speed').click();
    const field = page.getByLabel('New value of Pump speed');
    await field.fill('12');
    const cell = valueOf(page, 'boiler-pump');
    for (let updates = 0; updates < 2; updates += 1) {
        const old = await cell.textContent();
        await until(async () => await cell.textContent() !== old, 'for another value');
    }
    assert.equal(await field.inputValue(), '12');
    assert.equal(await field.evaluate((node) => node === document.activeElement), true);
});

test('the filter finds by name, id, type and group', async () => {
    const shown = () => page.locator('tr[data-item]:visible').evaluateAll(
        (rows) => rows.map((row) => row.dataset.item));
    const filter = page.locator('#filter');
    await filter.fill('BCD hall');
    await shows(page.locator('#matches'), '1 of 47');
    assert.deepEqual(await shown(), ['hall-visitors']);
    await filter.fill('außen');
    assert.deepEqual(await shown(), ['boiler-outside']);
    await filter.fill('');
    await page.locator('#group-filter').selectOption('Recipes');
    await shows(page.locator('#matches'), '14 of 47');
    await filter.fill('nothing like this');
    await page.getByText('No item matches the filter.').waitFor();
    assert.deepEqual(await shown(), []);
});

test('five hundred items are no burden', async () => {
    const folder = mkdtempSync(join(tmpdir(), 'tovik-plant-'));
    const plant = join(folder, 'plant.json');
    const items = Array.from({ length: 500 }, (_, index) => ({
        id: `item-${index}`, name: `Item ${index}`, type: '32Bit-FLOAT',
        value: { generator: 'sine', period: 10 + index },
    }));
    writeFileSync(plant, JSON.stringify({
        accounts: [{ email: 'a', password: 'b', project: 'c' }],
        groups: [{ id: 'all', name: 'All', items }],
    }));
    const large = await Cloud.start([], plant);
    const second = await browser.open(large);
    try {
        await shows(second.locator('#matches'), '500 items');
        const charts = () => second.evaluate(() => Object.keys(window.Chart.instances).length);
        await until(async () => await charts() > 5, 'for trends');
        assert.ok(await charts() < 40, `${await charts()} trends are drawn`);
        await second.locator('tr[data-item="item-499"]').scrollIntoViewIfNeeded();
        await holds(second, () => window.Chart.getChart(
            document.querySelector('tr[data-item="item-499"] canvas')));
        assert.ok(await charts() < 40, `${await charts()} trends are drawn after scrolling`);
        await second.locator('#filter').fill('item-321');
        await shows(second.locator('#matches'), '1 of 500');
        await until(async () => await charts() === 1, 'for one trend alone');
        assertNoTrouble(second);
    } finally {
        await second.close();
        await large.stop();
        rmSync(folder, { recursive: true });
    }
});
