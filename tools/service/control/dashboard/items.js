import { byId, element, setText } from './dom.js';
import { edit } from './editor.js';
import { count, duration, valueText } from './format.js';
import { Trends } from './trend.js';

/** What a write does to a value that moves by itself; nothing to tell of others. */
function holdText(item, writeHold) {
    if (!item.moving) {
        return '';
    }
    return writeHold === null ? 'Stops its generator until a restart.'
        : `Stops its generator for ${duration(writeHold)}.`;
}

/** One item: its row in the table. */
class Row {
    #value = null;
    #cell;
    #trendCell;
    #editCell;
    #button;
    #trend;
    #hint;

    constructor(item, writeHold, trends, api) {
        this.item = item;
        this.#hint = holdText(item, writeHold);
        this.#trend = trends.make(item);
        this.words = `${item.name}\n${item.id}\n${item.type}`.toLowerCase();
        this.#button = element('button', { type: 'button', 'aria-label': `Edit ${item.name}` }, 'Edit');
        this.#button.onclick = () => this.#edit(api);
        this.#cell = element('td', { className: 'c-value' });
        this.#trendCell = element('td', { className: 'c-trend' }, this.#trend.canvas);
        this.#editCell = element('td', { className: 'c-edit' }, this.#button);
        const facts = [item.id, item.type, ...(item.readonly ? ['read-only'] : [])].join(' · ');
        this.row = element(
            'tr', {},
            element('th', { scope: 'row', className: 'c-name' },
                    element('span', { className: 'name', title: item.name }, item.name),
                    element('span', { className: 'id', title: facts }, facts)),
            this.#cell, this.#trendCell, this.#editCell);
        this.row.dataset.item = item.id;
    }

    update(value, time) {
        this.#show(value);
        this.#trend.add(time, value);
    }

    #show(value) {
        if (value !== this.#value) {
            this.#value = value;
            const text = valueText(value);
            setText(this.#cell, text);
            this.#cell.title = text;
            this.#cell.dataset.bit = typeof value === 'boolean' ? text : '';
        }
    }

    #edit(api) {
        this.#button.hidden = true;
        this.#trendCell.hidden = true;
        this.#editCell.colSpan = 2;
        const done = (written) => {
            if (written !== undefined) {
                this.#show(written);
            }
            this.#editCell.colSpan = 1;
            this.#trendCell.hidden = false;
            this.#button.hidden = false;
            this.#button.focus();
        };
        edit({ api, item: this.item, value: this.#value, cell: this.#editCell,
               hint: this.#hint, done });
    }
}

/** The table of groups and items. */
export class Items {
    #api;
    #trends = new Trends();
    #groups = [];
    #filter = byId('filter');
    #groupFilter = byId('group-filter');

    constructor(api) {
        this.#api = api;
        this.#filter.oninput = () => this.#applyFilter();
        this.#groupFilter.onchange = () => this.#applyFilter();
        document.addEventListener('keydown', (event) => {
            if (event.key === '/' && !event.target.closest('input, textarea, select, dialog')) {
                event.preventDefault();
                this.#filter.focus();
            }
        });
    }

    /** Builds the table anew. */
    show({ groups, write_hold: writeHold }) {
        this.#trends.clear();
        for (const { body } of this.#groups) {
            body.remove();
        }
        this.#groups = groups.map((group) => this.#makeGroup(group, writeHold));
        byId('item-table').append(...this.#groups.map(({ body }) => body));
        const wanted = this.#groupFilter.value;
        this.#groupFilter.replaceChildren(
            element('option', { value: '' }, 'All groups'),
            ...groups.map(({ id, name }) => element('option', { value: id }, name)));
        this.#groupFilter.value = groups.some(({ id }) => id === wanted) ? wanted : '';
        this.#applyFilter();
    }

    update(values, time) {
        this.#trends.time = time;
        for (const { rows } of this.#groups) {
            for (const row of rows) {
                if (row.item.id in values) {
                    row.update(values[row.item.id], time);
                }
            }
        }
    }

    #makeGroup(group, writeHold) {
        const rows = group.items.map((item) => new Row(item, writeHold, this.#trends, this.#api));
        const facts = [group.location, count(rows.length, 'item')].filter(Boolean).join(', ');
        const permission = group.permission.includes('W') ? '' : ', read-only for clients';
        const heading = element(
            'tr', { className: 'group' },
            element('th', { scope: 'rowgroup', colSpan: 4 }, group.name,
                    element('span', { className: 'quiet' }, ` ${facts}${permission}`)));
        const body = element('tbody', {}, heading, ...rows.map(({ row }) => row));
        return { id: group.id, body, rows };
    }

    #applyFilter() {
        const words = this.#filter.value.toLowerCase().split(/\s+/).filter(Boolean);
        const wanted = this.#groupFilter.value;
        let shown = 0;
        let all = 0;
        for (const { id, body, rows } of this.#groups) {
            let shownHere = 0;
            for (const { row, words: text } of rows) {
                row.hidden = (wanted && wanted !== id) || !words.every((word) => text.includes(word));
                shownHere += row.hidden ? 0 : 1;
            }
            body.hidden = shownHere === 0;
            shown += shownHere;
            all += rows.length;
        }
        setText(byId('matches'), shown === all ? count(all, 'item') : `${shown} of ${all}`);
        byId('no-match').hidden = shown > 0 || all === 0;
    }
}
