// Faults, requests, clients and figures.
import assert from 'node:assert/strict';
import { after, afterEach, before, beforeEach, test } from 'node:test';
import { assertNoTrouble, Browser, Cloud, shows, until } from './support.mjs';

let browser;
let cloud;
let page;

before(async () => { browser = await Browser.start(); });
after(async () => { await browser.stop(); });
beforeEach(async () => {
    cloud = await Cloud.start();
    page = await browser.open(cloud);
});
afterEach(async () => {
    await page.close();
    await cloud.stop();
    assertNoTrouble(page, /status of 400/);
});

const state = (fault) => page.locator('#fault-list li', { hasText: fault }).locator('.quiet');
const rows = () => page.locator('#request-rows tr');

test('a fault is put together, strikes, goes off and on again', async () => {
    await page.getByLabel('Kind of fault').selectOption('errorcode');
    await shows(page.locator('#fault-help'), 'the reply is error code= (255)');
    await page.getByLabel('code', { exact: true }).fill('9');
    await page.locator('#fault-form').getByLabel('Requests').selectOption('value');
    await page.locator('#fault-form').getByLabel('Item', { exact: true }).fill('hall-fan');
    const text = 'errorcode:code=9,path=value,item=hall-fan';
    assert.equal(await page.getByLabel('As text').inputValue(), text);
    await page.getByRole('button', { name: 'Switch on' }).click();
    await shows(state(text), 'active, struck 0 times');
    await shows(page.locator('#faults-active'), '1 active');
    await shows(page.locator('#faults-on'), '1 fault active');
    assert.equal(await page.title(), '1 fault active – tovik-cloud');

    const token = await cloud.login();
    assert.equal(await cloud.value(token, 'hall-fan'), undefined);
    await shows(state(text), 'active, struck 1 time');
    await shows(rows().first().locator('.meaning'), 'value of another type, out of range or too long');

    const turn = page.getByRole('switch', { name: text });
    await turn.focus();
    await page.keyboard.press('Space');
    await shows(state(text), 'off');
    await page.locator('#faults-on').waitFor({ state: 'hidden' });
    assert.equal(await page.title(), 'tovik-cloud');
    assert.deepEqual(await cloud.faults(), []);
    assert.equal(await cloud.value(token, 'hall-fan'), 2);
    await page.keyboard.press('Space');
    await shows(state(text), 'active, struck 0 times');
    assert.equal((await cloud.faults())[0].fault, text);

    await page.getByRole('button', { name: `Forget ${text}` }).click();
    await page.getByText('No fault was switched on yet.').waitFor();
    assert.deepEqual(await cloud.faults(), []);
});

test('every kind is offered, with its keys alone', async () => {
    const kinds = await page.getByLabel('Kind of fault').locator('option').allTextContents();
    assert.equal(kinds.length, 23);
    assert.ok(kinds.includes('wrong-host (needs TLS)'));
    const form = page.locator('#fault-form');
    const open = () => form.locator('[data-key]:enabled').evaluateAll(
        (fields) => fields.map((field) => field.dataset.key));
    assert.deepEqual(await open(), ['seconds']);
    await page.getByLabel('Kind of fault').selectOption('hang');
    assert.deepEqual(await open(), ['path', 'item', 'group', 'count', 'seconds', 'after']);
    await page.getByLabel('Kind of fault').selectOption('delay');
    assert.deepEqual(await open(), ['own', 'path', 'item', 'group', 'count', 'seconds', 'after']);
    assert.equal(await page.getByLabel('ms', { exact: true }).getAttribute('placeholder'), '1000');
});

test('a fault can be typed, and a bad one is explained', async () => {
    const text = page.getByLabel('As text');
    await text.fill('dely');
    await text.press('Enter');
    await until(async () => /unknown name "dely"/.test(
        await page.locator('#fault-problem').textContent()), 'for the reason');
    await text.fill('empty:count=1,path=groups');
    await text.press('Enter');
    await shows(state('empty:count=1,path=groups'), 'active, struck 0 times');
    await shows(page.locator('#fault-problem'), '');
});

test('what is asked for twice is done once', async () => {
    const asked = [];
    let letGo;
    const gate = new Promise((resolve) => { letGo = resolve; });
    await page.route(/\/faults(\/\d+)?$/, async (route) => {
        asked.push(route.request().method());
        await gate;
        await route.continue();
    });
    const text = page.getByLabel('As text');
    await text.fill('empty:path=write');
    await text.press('Enter');
    await text.press('Enter');
    await until(() => asked.length > 0, 'for the first request');
    letGo();
    await shows(state('empty:path=write'), 'active, struck 0 times');
    await page.getByRole('button', { name: 'Forget empty:path=write' }).evaluate((button) => {
        button.click();
        button.click();
    });
    await page.getByText('No fault was switched on yet.').waitFor();
    await shows(page.locator('#notice'), 'Fault empty:path=write is on');
    assert.deepEqual(asked, ['POST', 'DELETE']);
});

test('faults that come from elsewhere and end by themselves are shown', async () => {
    await fetch(`${cloud.control}/faults`, {
        method: 'POST', body: JSON.stringify({ fault: 'http500:path=login,count=1' }) });
    await shows(state('http500'), 'active, struck 0 times');
    await fetch(`${cloud.url}/qlix_api/auth/login`, { method: 'POST' });
    await shows(state('http500'), 'over, struck 1 time');
    await page.getByRole('switch', { name: 'http500' }).check();
    await shows(state('http500'), 'active, struck 0 times');
    await page.getByRole('button', { name: 'All off' }).click();
    await shows(state('http500'), 'off');
    assert.deepEqual(await cloud.faults(), []);
});

test('requests are shown with their bodies, and without secrets', async () => {
    const token = await cloud.login('operator@example.com', 'tovik');
    await cloud.login('operator@example.com', 'a-wrong-guess');
    await cloud.value(token, 'hall-fan');
    await until(async () => await rows().count() === 3, 'for three requests');
    const [value, wrong, login] = await rows().allTextContents();
    assert.ok(value.includes(`{"dataitem_id":"hall-fan","token":"${token.slice(0, 6)}..."}`), value);
    assert.match(wrong, /error 1/);
    assert.match(login, /good.*"email":"operator@example\.com","password":"\*\*\*"/);
    const all = await page.content();
    for (const secret of [token, 'a-wrong-guess', '"tovik"']) {
        assert.ok(!all.includes(secret), secret);
    }
});

test('requests pause and go on', async () => {
    const token = await cloud.login();
    await until(async () => await rows().count() === 1, 'for the login');
    const pause = page.locator('#pause');
    await pause.click();
    await cloud.value(token, 'hall-fan');
    await cloud.value(token, 'hall-co2');
    await shows(pause, 'Go on (2 new)');
    assert.equal(await rows().count(), 1);
    await pause.click();
    await until(async () => await rows().count() === 3, 'for all requests');
    assert.match(await rows().first().textContent(), /hall-co2/);
});

test('the last two hundred requests are kept', async () => {
    const token = await cloud.login();
    for (let index = 0; index < 205; index += 1) {
        await cloud.value(token, 'hall-fan');
    }
    await until(async () => /^206/.test(await rows().first().textContent()), 'for the last one');
    assert.equal(await rows().count(), 200);
    await shows(page.locator('#counts tr', { hasText: 'value' }).locator('.number').first(), '205');
});

test('clients are shown with the beginnings of their tokens', async () => {
    await page.getByText('Nobody is logged in.').waitFor();
    const token = await cloud.login('visitor@example.com', 'guest');
    await cloud.value(token, 'hall-fan');
    const client = page.locator('#client-rows tr');
    await shows(client.locator('.name'), 'visitor@example.com');
    const where = await client.locator('.id').textContent();
    assert.match(where, new RegExp(`^${token.slice(0, 6)}\\.\\.\\. from 127\\.0\\.0\\.1:\\d+$`));
    await shows(client.locator('.number').first(), '1');
    // All of it can be read, without a pointer over it.
    assert.ok(await client.locator('.id').evaluate((node) => node.scrollWidth <= node.clientWidth));
    await page.getByRole('button', { name: 'Expire all tokens' }).click();
    await page.getByText('Nobody is logged in.').waitFor();
    assert.equal(await cloud.value(token, 'hall-fan'), undefined);
});
