// Runs the test files that are named, two at a time: they mostly wait for a page to tick.
import { resolve } from 'node:path';
import { run } from 'node:test';
import { tap } from 'node:test/reporters';

const files = process.argv.slice(2).map((file) => resolve(file));
run({ files, concurrency: 2 })
    .on('test:fail', () => { process.exitCode = 1; })
    .compose(tap)
    .pipe(process.stdout);
