import { announce, byId, element, resizeRows, setText } from './dom.js';
import { count, duration } from './format.js';

function makeRow() {
    return element('tr', {},
                   element('td', {}, element('span', { className: 'name' }),
                           element('span', { className: 'id' })),
                   element('td', { className: 'number' }),
                   element('td', { className: 'number' }));
}

/** Who has logged in, with the beginnings of their tokens. */
export class Clients {
    constructor(api) {
        byId('expire').onclick = async () => {
            try {
                const { expired } = await api.send('POST', '/tokens/expire');
                announce(`${count(expired, 'token')} expired`);
            } catch (error) {
                announce(error.message);
            }
        };
    }

    update(inOrderOfUse, tokens) {
        const body = byId('client-rows');
        // Those that take turns should not change places all the time.
        const clients = [...inOrderOfUse].sort((a, b) => a.age - b.age);
        resizeRows(body, clients.length, makeRow);
        clients.forEach((client, index) => {
            const [who, uses, heard] = body.children[index].children;
            setText(who.firstElementChild, client.account);
            const where = `${client.token} from ${client.address}`;
            setText(who.lastElementChild, where);
            who.title = `${client.account}, ${where}, logged in ${duration(client.age)} ago`;
            setText(uses, String(client.uses));
            setText(heard, `${duration(client.idle)} ago`);
        });
        byId('no-client').hidden = clients.length > 0;
        setText(byId('tokens'), count(tokens, 'good token'));
    }
}
