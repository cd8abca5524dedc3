import { byId, setText } from './dom.js';

const place = 'tovik-cloud control token';

/** The token that the control port may want. It is kept for this tab alone. */
export class Token {
    #waiting = null;

    get text() {
        return sessionStorage.getItem(place) ?? '';
    }

    /** Asks for another token than the one that was refused; all who ask get the same answer. */
    ask(refused) {
        if (this.text !== refused) {
            return Promise.resolve();
        }
        this.#waiting ??= this.#prompt(refused).finally(() => { this.#waiting = null; });
        return this.#waiting;
    }

    #prompt(refused) {
        const dialog = byId('token-dialog');
        const form = byId('token-form');
        const field = byId('token');
        setText(byId('token-problem'), refused ? 'The service does not accept this token.' : '');
        field.value = '';
        dialog.oncancel = (event) => event.preventDefault();
        dialog.showModal();
        field.focus();
        return new Promise((resolve) => {
            const finish = () => {
                dialog.close();
                resolve();
            };
            form.onsubmit = (event) => {
                event.preventDefault();
                const token = field.value.trim();
                // A header cannot carry others: every request would fail before it is sent.
                if (!/^[\x21-\x7e]+$/.test(token)) {
                    setText(byId('token-problem'), 'A token has visible ASCII characters only.');
                    field.select();
                    return;
                }
                sessionStorage.setItem(place, token);
                finish();
            };
            // A browser may close it all the same; the next refusal asks again.
            dialog.onclose = () => resolve();
        });
    }
}
