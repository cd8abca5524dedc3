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
