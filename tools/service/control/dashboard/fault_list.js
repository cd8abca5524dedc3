import { announce, byId, element, setText } from './dom.js';
import { count } from './format.js';

const place = 'tovik-cloud faults';

/** One fault that was switched on at some time; what is off has no number with the service. */
class Entry {
    id = null;
    active = false;
    #switch = element('input', { type: 'checkbox', role: 'switch' });
    #state = element('span', { className: 'quiet' });

    constructor(text, list) {
        this.text = text;
        this.#switch.onchange = () => list.turn(this, this.#switch.checked);
        this.row = element(
            'li', {},
            element('label', {}, this.#switch,
                    element('span', {}, element('code', {}, text), this.#state)),
            element('button', { type: 'button', 'aria-label': `Forget ${text}`, title: 'Forget',
                                className: 'small', onclick: () => list.forget(this) }, '×'));
        this.show(null);
    }

    /** Shows the service's record of it, null if there is none. */
    show(record) {
        this.id = record?.id ?? null;
        this.active = record?.active ?? false;
        this.settle();
        this.row.classList.toggle('off', !this.active);
        const struck = record ? `, struck ${count(record.applied, 'time')}` : '';
        setText(this.#state, `${this.active ? 'active' : record ? 'over' : 'off'}${struck}`);
    }

    /** The switch stands as the fault does, also after a change that came to nothing. */
    settle() {
        this.#switch.checked = this.active;
    }
}

/** The faults of the service, and those that were switched off, to be switched on again. */
export class FaultList {
    #api;
    #entries = [];
    #changes = 0;
    #changing = 0;
    #underWay = new Set();

    constructor(api) {
        this.#api = api;
        byId('faults-clear').onclick = () => this.#attempt(this, async () => {
            await api.send('DELETE', '/faults');
            this.#entries.forEach((entry) => entry.show(null));
            announce('All faults are off');
        });
        for (const text of JSON.parse(sessionStorage.getItem(place) ?? '[]')) {
            this.#add(text);
        }
        this.#summarise();
    }

    /** How many changes have begun or ended here. */
    get changes() {
        return this.#changes;
    }

    /** Takes what the service told, unless something was changed here since it was asked. */
    update(records, changes) {
        if (changes !== this.#changes || this.#changing > 0) {
            return;
        }
        const missing = new Set(this.#entries);
        for (const record of records) {
            const entry = this.#entries.find(
                ({ id, text }) => id === record.id && text === record.fault)
                ?? this.#entries.find(({ id, text }) => id === null && text === record.fault)
                ?? this.#add(record.fault);
            entry.show(record);
            missing.delete(entry);
        }
        missing.forEach((entry) => entry.show(null));
        this.#summarise();
    }

    /** Switches a fault on that the form describes; the service may say no. */
    switchOn(text) {
        return this.#change(() => this.#begin(text));
    }

    turn(entry, on) {
        return this.#attempt(entry, async () => {
            await this.#end(entry);
            if (on) {
                await this.#begin(entry.text);
            } else {
                entry.show(null);
                announce(`Fault ${entry.text} is off`);
            }
        });
    }

    forget(entry) {
        return this.#attempt(entry, async () => {
            await this.#end(entry);
            const next = entry.row.nextElementSibling ?? entry.row.previousElementSibling;
            this.#entries = this.#entries.filter((other) => other !== entry);
            entry.row.remove();
            (next?.querySelector('button') ?? byId('fault-kind')).focus();
        });
    }

    async #begin(text) {
        const { id } = await this.#api.send('POST', '/faults', { fault: text });
        const off = this.#entries.find((entry) => entry.id === null && entry.text === text);
        (off ?? this.#add(text)).show({ id, active: true, applied: 0 });
        announce(`Fault ${text} is on`);
    }

    async #end(entry) {
        if (entry.id !== null) {
            await this.#api.send('DELETE', `/faults/${entry.id}`);
            entry.id = null;
        }
    }

    async #change(action) {
        this.#changing += 1;
        try {
            await action();
        } finally {
            this.#changing -= 1;
            this.#changes += 1;
            this.#entries.forEach((entry) => entry.settle());
            this.#summarise();
        }
    }

    /** Does one thing at a time with a subject; what is asked for meanwhile is not done. */
    async #attempt(subject, action) {
        if (this.#underWay.has(subject)) {
            return;
        }
        this.#underWay.add(subject);
        try {
            await this.#change(action);
        } catch (error) {
            announce(error.message);
        } finally {
            this.#underWay.delete(subject);
        }
    }

    #add(text) {
        const entry = new Entry(text, this);
        this.#entries.push(entry);
        byId('fault-list').append(entry.row);
        return entry;
    }

    #summarise() {
        const active = this.#entries.filter((entry) => entry.active).length;
        setText(byId('faults-active'), active > 0 ? `${active} active` : 'none active');
        byId('faults-active').dataset.active = String(active > 0);
        const told = `${count(active, 'fault')} active`;
        setText(byId('faults-on'), told);
        byId('faults-on').hidden = active === 0;
        document.title = active > 0 ? `${told} – tovik-cloud` : 'tovik-cloud';
        byId('no-fault').hidden = this.#entries.length > 0;
        sessionStorage.setItem(place, JSON.stringify(this.#entries.map(({ text }) => text)));
    }
}
