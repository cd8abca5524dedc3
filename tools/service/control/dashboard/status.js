import { byId, element, setText } from './dom.js';
import { clock, duration } from './format.js';

const paths = ['login', 'groups', 'items', 'value', 'write', 'other'];

function makeRow(path) {
    return element('tr', {}, element('th', { scope: 'row' }, path),
                   element('td', { className: 'share' }, element('progress', {
                       max: 1, value: 0, 'aria-label': `Share of ${path}` })),
                   element('td', { className: 'number' }, '0'),
                   element('td', { className: 'number' }, '0.0'));
}

/** The state of the service, and of the connection to it. */
export class Status {
    #rows = new Map(paths.map((path) => [path, makeRow(path)]));
    #before = null;
    #started = null;
    #goneSince = null;

    constructor() {
        byId('counts').append(...this.#rows.values());
    }

    /** Shows it, and says whether the service was started anew since the last time. */
    update(status, started) {
        const restarted = this.#started !== null && started !== this.#started;
        this.#started = started;
        const before = restarted ? null : this.#before;
        setText(byId('url'), status.url);
        setText(byId('uptime'), duration(status.uptime));
        const most = Math.max(1, ...Object.values(status.requests));
        for (const [path, row] of this.#rows) {
            const total = status.requests[path] ?? 0;
            const [, share, count, rate] = row.children;
            share.firstElementChild.value = total / most;
            setText(count, String(total));
            setText(rate, this.#rate(total, before?.requests[path] ?? 0, status, before));
        }
        this.#before = status;
        this.#here();
        return restarted;
    }

    #rate(total, totalBefore, status, before) {
        const seconds = before ? status.uptime - before.uptime : 0;
        return (seconds > 0 ? (total - totalBefore) / seconds : 0).toFixed(1);
    }

    #here() {
        this.#goneSince = null;
        this.#state('live', 'Live');
        byId('gone').hidden = true;
    }

    /** The service does not answer. */
    gone() {
        this.#goneSince ??= Date.now() / 1000;
        this.#state('gone', 'No connection');
        const banner = byId('gone');
        setText(banner, `The service has not answered since ${clock(this.#goneSince)}. What is shown `
            + 'is from before; this page goes on by itself when it is back.');
        banner.hidden = false;
    }

    /** The service answers, but not with what is needed. */
    refused(reason) {
        this.#state('gone', 'Refused');
        const banner = byId('gone');
        setText(banner, reason);
        banner.hidden = false;
    }

    #state(state, text) {
        byId('state').dataset.state = state;
        document.body.dataset.state = state;
        setText(byId('state'), text);
    }
}
