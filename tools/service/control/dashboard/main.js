import { Api, Gone } from './api.js';
import { Clients } from './clients.js';
import { FaultForm } from './fault_form.js';
import { FaultList } from './fault_list.js';
import { Items } from './items.js';
import { Requests } from './requests.js';
import { Status } from './status.js';
import { Token } from './token.js';

const period = 1000;

const api = new Api(new Token());
const status = new Status();
const items = new Items(api);
const faults = new FaultList(api);
const form = new FaultForm((text) => faults.switchOn(text));
const clients = new Clients(api);
const requests = new Requests();
let known = false;
let shown = '';

/** What does not change while the service runs, and seldom when it is started anew. */
async function loadPlant() {
    const [plant, { kinds }] = await Promise.all([api.get('/groups'), api.get('/faults/kinds')]);
    const text = JSON.stringify([plant, kinds]);
    // Building it anew would take away what is being typed, and the trends.
    if (text !== shown) {
        items.show(plant);
        form.show(kinds, plant.groups);
        shown = text;
    }
    known = true;
}

async function poll() {
    if (!known) {
        await loadPlant();
    }
    const { changes } = faults;
    const live = await api.get(`/live?since=${requests.last}`);
    if (status.update(live.status, live.started)) {
        // A service that was started anew may have another plant, and its requests count from 1.
        known = false;
        requests.restart();
        return;
    }
    items.update(live.values, Date.now() / 1000);
    faults.update(live.faults, changes);
    clients.update(live.clients, live.status.tokens);
    requests.add(live.requests);
}

async function run() {
    for (;;) {
        const start = performance.now();
        try {
            await poll();
        } catch (error) {
            if (error instanceof Gone) {
                status.gone();
            } else {
                status.refused(error.message);
            }
        }
        const rest = Math.max(100, period - (performance.now() - start));
        await new Promise((resolve) => { setTimeout(resolve, rest); });
    }
}

run();
