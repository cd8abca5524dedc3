import { byId, element, setText } from './dom.js';

const commonKeys = new Set(['path', 'item', 'group', 'count', 'seconds', 'after']);

/** The form that switches a fault on. It writes the fault's text, which can be edited, too. */
export class FaultForm {
    #kinds = new Map();
    #form = byId('fault-form');
    #kind = byId('fault-kind');
    #text = byId('fault-text');
    #problem = byId('fault-problem');
    #underWay = false;
    #fields = [...byId('fault-form').querySelectorAll('[data-key]')];

    /** `switchOn` takes the fault's text and says no with an error. */
    constructor(switchOn) {
        this.#kind.onchange = () => this.#showKind();
        for (const field of this.#fields) {
            field.oninput = () => this.#writeText();
        }
        this.#form.onsubmit = async (event) => {
            event.preventDefault();
            if (this.#underWay) {
                return;
            }
            this.#underWay = true;
            try {
                await switchOn(this.#text.value.trim());
                setText(this.#problem, '');
            } catch (error) {
                setText(this.#problem, error.message);
            } finally {
                this.#underWay = false;
            }
        };
    }

    show(kinds, groups) {
        this.#kinds = new Map(kinds.map((kind) => [kind.name, kind]));
        const options = kinds.map(({ name, usable }) => element(
            'option', { value: name, disabled: !usable }, usable ? name : `${name} (needs TLS)`));
        this.#kind.replaceChildren(...options);
        this.#fieldOf('group').replaceChildren(
            element('option', { value: '' }, 'all'),
            ...groups.map(({ id, name }) => element('option', { value: id }, name)));
        byId('item-ids').replaceChildren(...groups.flatMap(({ items }) => items).map(
            ({ id, name }) => element('option', { value: id }, name)));
        this.#showKind();
    }

    #fieldOf(key) {
        return this.#fields.find((field) => field.dataset.key === key);
    }

    get #chosen() {
        return this.#kinds.get(this.#kind.value);
    }

    // What a kind does not take stays in its place, so that nothing jumps.
    #showKind() {
        const { help, keys } = this.#chosen;
        setText(byId('fault-help'), help);
        const own = keys.find(({ name }) => !commonKeys.has(name));
        setText(byId('fault-own-label'), own ? own.name : 'Own key');
        for (const field of this.#fields) {
            const key = field.dataset.key === 'own'
                ? own : keys.find(({ name }) => name === field.dataset.key);
            field.disabled = !key;
            if (field.dataset.key === 'own') {
                field.value = '';
            }
            if (field.tagName === 'INPUT' && field.dataset.key !== 'item') {
                field.placeholder = key ? key.default || 'no limit' : 'not taken';
            }
        }
        this.#writeText();
    }

    #writeText() {
        const { name, keys } = this.#chosen;
        const own = keys.find((key) => !commonKeys.has(key.name));
        const parts = this.#fields.filter((field) => !field.disabled && field.value !== '').map(
            (field) => `${field.dataset.key === 'own' ? own.name : field.dataset.key}=${field.value}`);
        this.#text.value = parts.length > 0 ? `${name}:${parts.join(',')}` : name;
        setText(this.#problem, '');
    }
}
