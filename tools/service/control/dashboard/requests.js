import { byId, element, setText } from './dom.js';
import { clock, requestResult, resultMeaning } from './format.js';

const shown = 200;

function makeRow(request) {
    const [result, kind] = requestResult(request);
    const struck = request.fault
        ? element('span', { className: 'struck', title: 'The fault that struck' }, request.fault) : '';
    return element(
        'tr', {},
        element('td', { className: 'number' }, String(request.number)),
        element('td', {}, clock(request.time)),
        element('td', {}, request.path),
        element('td', {}, element('span', { className: kind }, result),
                element('span', { className: 'meaning' }, resultMeaning(request)), struck),
        element('td', { className: 'number' }, request.duration_ms.toFixed(1)),
        element('td', {}, element('code', {}, JSON.stringify(request.body))));
}

/** The last requests, the newest on top. */
export class Requests {
    #paused = false;
    #waiting = [];
    #body = byId('request-rows');
    #button = byId('pause');

    /** The number of the last request that is known. */
    last = 0;

    constructor() {
        this.#button.onclick = () => {
            this.#paused = !this.#paused;
            this.#button.setAttribute('aria-pressed', String(this.#paused));
            this.#show();
        };
    }

    add(requests) {
        if (requests.length > 0) {
            this.last = requests.at(-1).number;
            this.#waiting = [...this.#waiting, ...requests].slice(-shown);
        }
        this.#show();
    }

    /** The service has begun to count anew. */
    restart() {
        this.last = 0;
        this.#waiting = [];
        this.#body.replaceChildren();
    }

    #show() {
        if (!this.#paused && this.#waiting.length > 0) {
            this.#body.prepend(...this.#waiting.reverse().map(makeRow));
            this.#waiting = [];
            while (this.#body.children.length > shown) {
                this.#body.lastElementChild.remove();
            }
        }
        const backlog = this.#waiting.length;
        setText(this.#button, this.#paused ? `Go on (${backlog} new)` : 'Pause');
        byId('no-request').hidden = this.#body.children.length > 0;
    }
}
