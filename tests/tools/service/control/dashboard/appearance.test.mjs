// By keyboard, in the dark, on narrow screens, and without jumping about.
import assert from 'node:assert/strict';
import { after, afterEach, before, test } from 'node:test';
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
afterEach(async () => {
    await page.close();
    assertNoTrouble(page);
});

const focused = () => page.evaluate(() => {
    const node = document.activeElement;
    return { id: node.id, label: node.getAttribute('aria-label'), tag: node.tagName,
             outline: getComputedStyle(node).outlineStyle };
});

test('a value is found and changed by keyboard alone', async () => {
    page = await browser.open(cloud);
    await page.keyboard.press('/');
    assert.equal((await focused()).id, 'filter');
    await page.keyboard.type('hall-fan');
    const stops = [];
    for (let index = 0; index < 3; index += 1) {
        await page.keyboard.press('Tab');
        stops.push(await focused());
    }
    assert.deepEqual(stops.map(({ id, label }) => label ?? id),
                     ['group-filter', 'Table of items', 'Edit Lüfterstufe']);
    assert.ok(stops.every(({ outline }) => outline !== 'none'), JSON.stringify(stops));
    await page.keyboard.press('Enter');
    assert.equal((await focused()).label, 'New value of Lüfterstufe');
    await page.keyboard.type('77');
    await page.keyboard.press('Enter');
    await shows(valueOf(page, 'hall-fan'), '77');
    assert.equal((await focused()).label, 'Edit Lüfterstufe');
    assert.equal(await cloud.value(await cloud.login(), 'hall-fan'), 77);
});

test('the keyboard reaches everything, in the order of the page, and sees where it is', async () => {
    page = await browser.open(cloud);
    await page.locator('#filter').fill('hall-fan');
    await page.evaluate(() => document.querySelector('.skip').focus());
    const order = [];
    for (let index = 0; index < 40; index += 1) {
        await page.keyboard.press('Tab');
        const stop = await focused();
        if (stop.tag === 'BODY') {
            break;
        }
        assert.notEqual(stop.outline, 'none', JSON.stringify(stop));
        order.push(stop.id || stop.label || stop.tag);
    }
    const places = ['filter', 'group-filter', 'faults-clear', 'fault-kind', 'fault-text', 'expire',
                    'Table of clients', 'pause', 'Table of requests'].map((id) => order.indexOf(id));
    assert.ok(places.every((place) => place >= 0), `${order}`);
    assert.deepEqual(places, [...places].sort((a, b) => a - b), `${order}`);
});

test('the faults are a few keys away, on a wide screen, too', async () => {
    page = await browser.open(cloud);
    for (let index = 0; (await page.evaluate(() => document.activeElement.textContent)) !== 'Faults';
        index += 1) {
        assert.ok(index < 6, 'no link to the faults among the first stops');
        await page.keyboard.press('Tab');
    }
    await page.keyboard.press('Enter');
    await page.keyboard.press('Tab');
    assert.ok(await page.evaluate(() => document.activeElement.closest('#faults') !== null));
});

test('every field and button has a name', async () => {
    page = await browser.open(cloud);
    const nameless = await page.evaluate(() => {
        const named = (node) => node.getAttribute('aria-label') || node.textContent.trim()
            || [...(node.labels ?? [])].some((label) => label.textContent.trim());
        return [...document.querySelectorAll('button, input, select, textarea, canvas')]
            .filter((node) => !named(node)).map((node) => node.outerHTML);
    });
    assert.deepEqual(nameless, []);
});

/** How well texts can be told from what is behind them, as the WCAG reckon it. */
function contrasts() {
    return page.evaluate(() => {
        const rgb = (text) => text.match(/[\d.]+/g).map(Number);
        const light = (colour) => {
            const [r, g, b] = colour.slice(0, 3).map((part) => {
                const share = part / 255;
                return share <= 0.03928 ? share / 12.92 : ((share + 0.055) / 1.055) ** 2.4;
            });
            return 0.2126 * r + 0.7152 * g + 0.0722 * b;
        };
        const ground = (node) => {
            const colour = rgb(getComputedStyle(node).backgroundColor);
            return colour.length > 3 && colour[3] === 0 ? ground(node.parentElement) : colour;
        };
        const chosen = ['h1', '.address', '#state', 'td.c-value', '.id', '.group .quiet', 'thead th',
                        '.c-edit button', '#fault-form button.main', '#fault-help', '.empty'];
        return chosen.map((selector) => {
            const node = document.querySelector(selector);
            const [low, high] = [light(rgb(getComputedStyle(node).color)), light(ground(node))]
                .sort((a, b) => a - b);
            return [selector, (high + 0.05) / (low + 0.05)];
        });
    });
}

for (const scheme of ['light', 'dark']) {
    test(`texts can be read with the ${scheme} scheme`, async () => {
        page = await browser.open(cloud);
        await page.emulateMedia({ colorScheme: scheme });
        const ground = await page.evaluate(() => getComputedStyle(document.body).backgroundColor);
        const sum = ground.match(/\d+/g).slice(0, 3).reduce((all, part) => all + Number(part), 0);
        assert.ok(scheme === 'dark' ? sum < 150 : sum > 600, ground);
        for (const [place, contrast] of await contrasts()) {
            assert.ok(contrast >= 4.5, `${place}: ${contrast.toFixed(2)}`);
        }
        await holds(page, () => {
            const wanted = getComputedStyle(document.documentElement).getPropertyValue('--trend');
            const charts = Object.values(window.Chart.instances);
            return charts.length > 0 && charts.every(
                (chart) => chart.data.datasets[0].borderColor === wanted.trim());
        });
    });
}

for (const width of [1024, 768, 480, 360]) {
    test(`nothing sticks out of a screen ${width} wide`, async () => {
        page = await browser.open(cloud, { viewport: { width, height: 900 } });
        for (const name of ['Boiler on', 'Flow temperature', 'Display text']) {
            await page.getByRole('button', { name: `Edit ${name}`, exact: true }).click();
        }
        const whole = await page.evaluate(() => document.documentElement.scrollWidth);
        assert.ok(whole <= width, `the page is ${whole} wide`);
        const outside = await page.evaluate((limit) => {
            const isInside = (node) => {
                const box = node.getBoundingClientRect();
                return box.width === 0 || (box.left >= 0 && box.right <= limit);
            };
            return [...document.querySelectorAll('button, input, select, textarea, canvas, td.c-value, h2')]
                .filter((node) => !isInside(node)).map((node) => node.outerHTML.slice(0, 80));
        }, width);
        assert.deepEqual(outside, []);
    });
}

for (const width of [390, 1440]) {
    test(`the table of clients fits in its place on a screen ${width} wide`, async () => {
        page = await browser.open(cloud, { viewport: { width, height: 900 } });
        await cloud.login();
        const table = page.locator('#clients .scroll');
        await until(async () => await table.locator('tbody tr').count() > 0, 'for a client');
        const [needed, given] = await table.evaluate((node) => [node.scrollWidth, node.clientWidth]);
        assert.ok(needed <= given, `${needed} in ${given}`);
        const cells = await table.locator('td.number').evaluateAll(
            (nodes) => nodes.filter((node) => node.scrollWidth > node.clientWidth)
                .map((node) => node.textContent));
        assert.deepEqual(cells, []);
    });
}

test('a telephone scrolls the page, and no list in it', async () => {
    page = await browser.open(cloud, { viewport: { width: 390, height: 844 } });
    await shows(page.locator('#matches'), '47 items');
    for (const list of ['#items .scroll', '#requests .scroll', '#fault-list']) {
        const [whole, seen] = await page.locator(list).evaluate(
            (node) => [node.scrollHeight, node.clientHeight]);
        assert.ok(whole <= seen, `${list}: ${seen} of ${whole}`);
    }
});

test('a long text is shown whole where there is room', async () => {
    page = await browser.open(cloud);
    const cut = await valueOf(page, 'boiler-serial').evaluate(
        (node) => node.scrollWidth > node.clientWidth);
    assert.equal(cut, false);
});

test('nothing jumps while values move, faults strike and clients come', async () => {
    page = await browser.open(cloud);
    await shows(page.locator('#matches'), '47 items');
    await page.evaluate(() => {
        window.shifts = [];
        new PerformanceObserver((list) => {
            for (const entry of list.getEntries()) {
                window.shifts.push(...entry.sources.map(({ node }) => node?.outerHTML ?? 'gone'));
            }
        }).observe({ type: 'layout-shift' });
    });
    const token = await cloud.login();
    await cloud.value(token, 'hall-fan');
    const cell = valueOf(page, 'boiler-pump');
    for (let updates = 0; updates < 3; updates += 1) {
        const old = await cell.textContent();
        await until(async () => await cell.textContent() !== old, 'for another value');
    }
    // New requests push the older ones down inside their own table, and nothing else.
    const shifts = await page.evaluate(() => window.shifts);
    assert.deepEqual(shifts.filter((html) => !/^<(tr|td|p id="no-)/.test(html)), []);
});
