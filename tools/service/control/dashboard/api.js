/** The service did not answer. */
export class Gone extends Error {
    constructor() {
        super('the service does not answer; try again when it is back');
    }
}

/** The service said no, and why. */
export class Refused extends Error {}

const patience = 8000;

/** The control API. */
export class Api {
    #token;

    constructor(token) {
        this.#token = token;
    }

    get(path) {
        return this.#call('GET', path);
    }

    /** The members that the body has are those of the object. */
    send(method, path, object) {
        return this.#call(method, path, JSON.stringify(object ?? {}));
    }

    async #call(method, path, body) {
        for (;;) {
            const token = this.#token.text;
            const response = await this.#fetch(method, path, body, token);
            if (response.status !== 401) {
                return this.#answer(response);
            }
            await this.#token.ask(token);
        }
    }

    async #fetch(method, path, body, token) {
        const headers = token ? { Authorization: `Bearer ${token}` } : {};
        if (body !== undefined) {
            headers['Content-Type'] = 'application/json';
        }
        try {
            return await fetch(path, { method, body, headers, signal: AbortSignal.timeout(patience) });
        } catch {
            throw new Gone();
        }
    }

    async #answer(response) {
        let answer;
        try {
            answer = await response.json();
        } catch {
            throw new Gone();
        }
        if (!response.ok) {
            throw new Refused(answer.error ?? `status ${response.status}`);
        }
        return answer;
    }
}
