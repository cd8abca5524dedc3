// What the tests stand on: nothing that fails keeps a service, a page or the run itself.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { test } from 'node:test';
import { Browser, until } from './support.mjs';

const patience = 60000;

/** Waits until a service answers no more. */
function isGone(control) {
    assert.match(control, /^http:\/\//);
    return until(() => fetch(`${control}/status`).then(() => false, () => true), 'for its end');
}

test('a run that fails ends, and its services with it', async () => {
    const script = `
        import { Cloud } from './support.mjs';
        const cloud = await Cloud.start();
        console.log(cloud.control);
        setTimeout(() => { throw new Error('a test has failed'); });`;
    const { status, stdout } = spawnSync(
        process.execPath, ['--input-type=module', '--eval', script], { encoding: 'utf8', timeout: patience });
    assert.equal(status, 1);
    await isGone(stdout.trim());
});

test('a run that leaves a service behind ends all the same', async () => {
    const script = `
        import { Cloud } from './support.mjs';
        console.log((await Cloud.start()).control);`;
    const { status, stdout } = spawnSync(
        process.execPath, ['--input-type=module', '--eval', script], { encoding: 'utf8', timeout: patience });
    assert.equal(status, 0);
    await isGone(stdout.trim());
});

test('a page that cannot be opened is closed', async () => {
    const browser = await Browser.start();
    try {
        const before = browser.context.pages().length;
        await assert.rejects(browser.open({ control: 'http://127.0.0.1:1' }), /ERR_/);
        assert.equal(browser.context.pages().length, before);
    } finally {
        await browser.stop();
    }
});

test('a run without tests is a failure', () => {
    const { status, stderr } = spawnSync(process.execPath, ['run.mjs'],
                                         { encoding: 'utf8', timeout: patience });
    assert.equal(status, 1);
    assert.match(stderr, /no test files are named/);
});
