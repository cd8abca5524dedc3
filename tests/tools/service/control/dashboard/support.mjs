// What the tests of the dashboard share: the service, a client of it, and a browser.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { chromium } from 'playwright-core';

const patience = 30000;

function setting(name) {
    const value = process.env[name];
    assert.ok(value, `the variable ${name} is missing; run these tests with ctest -R test_dashboard`);
    return value;
}

export const examplePlant = setting('TOVIK_PLANT');

// A test that fails may leave a service behind: it keeps nobody waiting, and ends with this process.
const running = new Set();
process.on('exit', () => running.forEach((cloud) => cloud.process.kill('SIGKILL')));

/** The real tovik-cloud, over plain HTTP. */
export class Cloud {
    static async start(options = [], plant = examplePlant) {
        const cloud = new Cloud();
        cloud.process = spawn(setting('TOVIK_CLOUD'), [plant, '--http', ...options],
                              { stdio: ['ignore', 'pipe', 'ignore'] });
        running.add(cloud);
        cloud.exited = new Promise((resolve) => { cloud.process.once('exit', resolve); });
        cloud.exited.then(() => running.delete(cloud));
        let output = '';
        for await (const part of cloud.process.stdout.iterator({ destroyOnReturn: false })) {
            output += part;
            const match = output.match(/Service: (\S+)\nControl: (\S+)\n/);
            if (match) {
                [, cloud.url, cloud.control] = match;
                cloud.process.unref();
                cloud.process.stdout.unref();
                return cloud;
            }
        }
        throw new Error(`tovik-cloud did not start: ${output}`);
    }

    get controlPort() {
        return new URL(this.control).port;
    }

    async stop() {
        this.process.ref();
        this.process.kill('SIGTERM');
        await this.exited;
    }

    async post(path, body) {
        const response = await fetch(`${this.url}/qlix_api/${path}`, {
            method: 'POST', headers: { 'Content-Type': 'application/json' },
            body: JSON.stringify(body),
        });
        return response.json();
    }

    async login(email = 'operator@example.com', password = 'tovik') {
        return (await this.post('auth/login', { email, password, project: 'plant' })).token;
    }

    async value(token, item) {
        return (await this.post('imonitor/dataitem/value', { token, dataitem_id: item })).value;
    }

    async faults() {
        return (await (await fetch(`${this.control}/faults`)).json()).faults;
    }
}

/** An empty browser that reaches nothing but this computer. */
export class Browser {
    static async start() {
        const browser = new Browser();
        browser.folder = mkdtempSync(join(tmpdir(), 'tovik-dashboard-'));
        browser.context = await chromium.launchPersistentContext(browser.folder, {
            executablePath: setting('TOVIK_CHROMIUM'),
            headless: true,
            viewport: { width: 1440, height: 900 },
            args: ['--headless', '--no-sandbox', '--disable-gpu', '--disable-background-networking',
                   '--disable-component-update', '--disable-sync', '--no-first-run',
                   '--disable-quic', '--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE 127.0.0.1'],
        });
        return browser;
    }

    async stop() {
        await this.context.close();
        rmSync(this.folder, { recursive: true, force: true });
    }

    /** Opens the dashboard and waits for its first values, unless it is said what to wait for. */
    async open(cloud, { viewport, ready = '#state[data-state=live]' } = {}) {
        const page = await this.context.newPage();
        page.setDefaultTimeout(patience);
        page.troubles = [];
        page.on('console', (message) => {
            if (['error', 'warning'].includes(message.type())) {
                page.troubles.push(message.text());
            }
        });
        page.on('pageerror', (error) => page.troubles.push(String(error)));
        page.on('request', (request) => {
            if (!request.url().startsWith(`${cloud.control}/`)) {
                page.troubles.push(`asks somebody else: ${request.url()}`);
            }
        });
        try {
            if (viewport) {
                await page.setViewportSize(viewport);
            }
            await page.goto(`${cloud.control}/`);
            await page.locator(ready).waitFor();
        } catch (error) {
            await page.close();
            throw error;
        }
        return page;
    }
}

/** Fails if the page complained about anything that is not expected, or asked another host. */
export function assertNoTrouble(page, expected = /^$/) {
    assert.deepEqual(page.troubles.filter((text) => !expected.test(text)), []);
}

/** Waits until a function has a result other than false, and gives it. */
export async function until(question, what) {
    const end = Date.now() + patience;
    for (;;) {
        const answer = await question();
        if (answer) {
            return answer;
        }
        assert.ok(Date.now() < end, `waited in vain: ${what}`);
        await new Promise((resolve) => { setTimeout(resolve, 50); });
    }
}

/** The cell with the value of an item. */
export function valueOf(page, item) {
    return page.locator(`tr[data-item="${item}"] td.c-value`);
}

/** Waits until a place of the page shows exactly this text. */
export async function shows(locator, text) {
    await until(async () => (await locator.textContent()).trim() === text,
                `for "${text}" in ${locator}`);
}

/** Runs a function in the page and waits until it holds. */
export function holds(page, question, argument) {
    return page.waitForFunction(question, argument);
}
