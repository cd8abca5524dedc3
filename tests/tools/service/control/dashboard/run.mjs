// Runs the test files that are named, two at a time: they mostly wait for a page to tick.
import { resolve } from 'node:path';
import { run } from 'node:test';
import { tap } from 'node:test/reporters';

const files = process.argv.slice(2).map((file) => resolve(file));
if (files.length === 0) {
    console.error('no test files are named: there is nothing to run');
    process.exit(1);
}
run({ files, concurrency: 2 })
    .on('test:fail', () => { process.exitCode = 1; })
    .compose(tap)
    .pipe(process.stdout);
