/** A value as people read it. */
export function valueText(value) {
    if (typeof value === 'boolean') {
        return value ? 'on' : 'off';
    }
    return String(value);
}

/** A duration, in its two greatest units. */
export function duration(seconds) {
    const whole = Math.max(0, Math.floor(seconds));
    const units = [['d', 86400], ['h', 3600], ['min', 60], ['s', 1]];
    const first = units.findIndex(([, size]) => whole >= size);
    if (first < 0) {
        return '0 s';
    }
    let rest = whole;
    const parts = units.slice(first, first + 2).map(([name, size]) => {
        const count = Math.floor(rest / size);
        rest -= count * size;
        return `${count} ${name}`;
    });
    return parts.join(' ');
}

/** The time of day of seconds since 1970. */
export function clock(seconds) {
    const date = new Date(seconds * 1000);
    const two = (number) => String(number).padStart(2, '0');
    return `${two(date.getHours())}:${two(date.getMinutes())}:${two(date.getSeconds())}`;
}

/** "1 item", "2 items". */
export function count(number, noun) {
    return `${number} ${noun}${number === 1 ? '' : 's'}`;
}

/** What this service means by its codes. */
const codeMeanings = new Map([
    [1, 'unknown e-mail or password'], [3, 'not this account\u2019s project'],
    [4, 'token unknown or expired'], [7, 'no such group or item'], [8, 'read-only'],
    [9, 'value of another type, out of range or too long'], [15, 'malformed request'],
    [255, 'internal error']]);

/** What the result of a request means; empty for one that needs no words. */
export function resultMeaning({ status, errorcode }) {
    return status === 200 ? codeMeanings.get(errorcode) ?? '' : '';
}

/** The result of a request, and whether it is good, bad or no answer at all. */
export function requestResult(request) {
    if (request.status === 0) {
        return ['no reply', 'bad'];
    }
    if (request.status !== 200) {
        return [`HTTP ${request.status}`, 'bad'];
    }
    if (request.errorcode === null) {
        return ['spoilt', 'bad'];
    }
    return request.errorcode === 0 ? ['good', 'good'] : [`error ${request.errorcode}`, 'bad'];
}
