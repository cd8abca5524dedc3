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

/** A field of more than one line; Enter still submits, Shift and Enter break the line. */
function makeTextField(value, label) {
    const field = element('textarea', { value, 'aria-label': label, autocomplete: 'off',
                                        spellcheck: false });
    const fit = () => { field.rows = Math.min(5, field.value.split('\n').length); };
    field.oninput = fit;
    field.onkeydown = (event) => {
        if (event.key === 'Enter' && !event.shiftKey && !event.isComposing) {
            event.preventDefault();
            field.form.requestSubmit();
        }
    };
    fit();
    return field;
}

function makeField(item, value) {
    const label = `New value of ${item.name}`;
    if (item.type.endsWith('String')) {
        return makeTextField(valueText(value), label);
    }
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
 * `hint` tells what else the change does.
 */
export function edit({ api, item, value, cell, hint, done }) {
    const field = makeField(item, value);
    // A field does not hold every text as it is; what nobody touched goes back unchanged.
    const untouched = field.value;
    const problem = element('p', { className: 'problem', role: 'alert' });
    const form = element('form', { className: 'edit' }, field,
                         element('button', { type: 'submit', className: 'main' }, 'Set'),
                         element('button', { type: 'button', onclick: () => finish() }, 'Cancel'),
                         ...(hint ? [element('p', { className: 'hint quiet' }, hint)] : []), problem);
    let underWay = false;
    const finish = (written) => {
        form.remove();
        done(written);
    };
    form.onsubmit = async (event) => {
        event.preventDefault();
        if (underWay) {
            return;
        }
        underWay = true;
        try {
            const path = `/items/${encodeURIComponent(item.id)}`;
            const wanted = field.value === untouched ? value : parse(item.type, field.value);
            const written = await api.send('PUT', path, { value: wanted });
            announce(`${item.name} is now ${valueText(written.value)}`);
            // Whoever cancelled meanwhile may have begun again.
            if (form.isConnected) {
                finish(written.value);
            }
        } catch (error) {
            setText(problem, error.message);
            field.setAttribute('aria-invalid', 'true');
            field.focus();
        } finally {
            underWay = false;
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
