import { announce, element, setText } from './dom.js';
import { valueText } from './format.js';

/** What was typed as the JSON value that the type has. */
function parse(type, text) {
    if (type === 'Bit') {
        return text === 'on';
    }
    if (/HEX|String/.test(type)) {
        return text;
    }
    const number = Number(text);
    if (text.trim() === '' || !Number.isFinite(number)) {
        throw new Error(`"${text}" is not a number`);
    }
    return number;
}

function makeField(item, value) {
    const label = `New value of ${item.name}`;
    if (item.type !== 'Bit') {
        const mode = /INT|BCD|FLOAT/.test(item.type) ? 'decimal' : 'text';
        return element('input', { value: valueText(value), 'aria-label': label, inputMode: mode,
                                  autocomplete: 'off', spellcheck: false });
    }
    const field = element('select', { 'aria-label': label }, element('option', {}, 'on'),
                          element('option', {}, 'off'));
    field.value = valueText(value);
    return field;
}

/**
 * Lets a value be edited in its row: `cell` gets the form, `done` is called when it has gone, with
 * the value if one was written. The live value stays in sight, and no update touches the form.
 */
export function edit({ api, item, value, cell, done }) {
    const field = makeField(item, value);
    const problem = element('p', { className: 'problem', role: 'alert' });
    const form = element('form', { className: 'edit' }, field,
                         element('button', { type: 'submit', className: 'main' }, 'Set'),
                         element('button', { type: 'button', onclick: () => finish() }, 'Cancel'),
                         problem);
    const finish = (written) => {
        form.remove();
        done(written);
    };
    form.onsubmit = async (event) => {
        event.preventDefault();
        try {
            const path = `/items/${encodeURIComponent(item.id)}`;
            const written = await api.send('PUT', path, { value: parse(item.type, field.value) });
            announce(`${item.name} is now ${valueText(written.value)}`);
            finish(written.value);
        } catch (error) {
            setText(problem, error.message);
            field.setAttribute('aria-invalid', 'true');
            field.focus();
        }
    };
    form.onkeydown = (event) => {
        if (event.key === 'Escape') {
            finish();
        }
    };
    cell.append(form);
    field.focus();
    field.select?.();
}
