const shownSeconds = 120;
const keptPoints = 240;
const longestPause = 5;
const place = 'tovik-cloud trends';
const width = 260;
const height = 32;

/** Numbers as they are, on and off as 1 and 0, registers by their digits. */
function numberOf(value) {
    return typeof value === 'string' ? Number.parseInt(value, 16) : Number(value);
}

/** Sets each text's place among those that are kept, in the order of the alphabet. */
function numberTexts(points) {
    const texts = [...new Set(points.filter(isValue).map(({ text }) => text))].sort();
    const places = new Map(texts.map((text, place) => [text, place]));
    for (const point of points.filter(isValue)) {
        point.y = places.get(point.text);
    }
}

/** False for the end of a line, after which no value came for a while. */
function isValue(point) {
    return !Number.isNaN(point.y);
}

function colours() {
    const style = getComputedStyle(document.documentElement);
    return [style.getPropertyValue('--trend').trim(), style.getPropertyValue('--trend-fill').trim()];
}

/** The line of one item. Values are kept always, drawn only while the line can be seen. */
class Trend {
    #item;
    #points = [];
    #chart = null;

    constructor(item, canvas) {
        this.#item = item;
        this.canvas = canvas;
    }

    add(time, value) {
        const last = this.#points.at(-1);
        if (last && time - last.x > longestPause) {
            this.#points.push({ x: last.x, y: NaN });
        }
        this.#points.push(this.#isText ? { x: time, y: 0, text: value }
            : { x: time, y: numberOf(value) });
        while (this.#points.length > keptPoints || this.#points[0].x < time - shownSeconds - 5) {
            this.#points.shift();
        }
        if (this.#chart) {
            this.#draw(time);
        }
    }

    /** What is kept, as text can hold it: an end of a line is null there. */
    get points() {
        return this.#points;
    }

    /** Goes on from what the same page has kept before it was loaded anew. */
    resume(points, time) {
        this.#points = points.filter(({ x }) => x > time - shownSeconds)
            .map((point) => ({ ...point, y: point.y ?? NaN }));
    }

    show(time) {
        if (!this.#chart) {
            this.#chart = new globalThis.Chart(this.canvas, this.#settings());
            this.#draw(time);
        }
    }

    hide() {
        this.#chart?.destroy();
        this.#chart = null;
    }

    recolour() {
        if (this.#chart) {
            const [line, fill] = colours();
            Object.assign(this.#chart.data.datasets[0], { borderColor: line, backgroundColor: fill });
            this.#chart.update('none');
        }
    }

    get #isText() {
        return this.#item.type.endsWith('String');
    }

    get #numbers() {
        return this.#points.filter(isValue).map((point) => point.y);
    }

    #draw(time) {
        if (this.#isText) {
            numberTexts(this.#points);
        }
        const { x, y } = this.#chart.options.scales;
        x.max = time;
        x.min = time - shownSeconds;
        [y.min, y.max] = this.#range();
        this.#chart.update('none');
        this.canvas.setAttribute('aria-label', this.#inWords());
    }

    // The library would round to numbers that look well on an axis, which is not shown.
    #range() {
        if (this.#item.type === 'Bit') {
            return [-0.15, 1.15];
        }
        const numbers = this.#numbers;
        const [low, high] = [Math.min(...numbers), Math.max(...numbers)];
        const margin = (high - low) * 0.12 || Math.abs(high) * 0.1 || 1;
        return [low - margin, high + margin];
    }

    #inWords() {
        const numbers = this.#numbers;
        const isNumber = /INT|BCD|FLOAT/.test(this.#item.type);
        const span = `${Math.min(...numbers)} to ${Math.max(...numbers)}`;
        const moved = new Set(numbers).size > 1;
        const what = !moved ? 'unchanged' : isNumber ? span : 'changing';
        return `Trend of ${this.#item.name}: ${what}`;
    }

    #settings() {
        const [line, fill] = colours();
        const smooth = this.#item.type === '32Bit-FLOAT';
        return {
            type: 'line',
            data: {
                datasets: [{
                    data: this.#points, borderColor: line, backgroundColor: fill, borderWidth: 1.5,
                    pointRadius: 0, fill: 'start', stepped: smooth ? false : 'before',
                }],
            },
            options: {
                animation: false, responsive: false, events: [], parsing: false, normalized: true,
                layout: { padding: { top: 2, bottom: 2 } },
                plugins: { legend: { display: false }, tooltip: { enabled: false } },
                scales: {
                    x: { type: 'linear', display: false },
                    y: { type: 'linear', display: false },
                },
            },
        };
    }
}

/** All trends; draws those that are on the screen. What they hold outlives a reload of the page. */
export class Trends {
    #byCanvas = new Map();
    #byItem = new Map();
    #kept = JSON.parse(sessionStorage.getItem(place) ?? '{}');
    #time = 0;
    #observer = new IntersectionObserver((entries) => {
        for (const entry of entries) {
            const trend = this.#byCanvas.get(entry.target);
            if (entry.isIntersecting) {
                trend?.show(this.#time);
            } else {
                trend?.hide();
            }
        }
    });

    constructor() {
        matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => {
            this.#byCanvas.forEach((trend) => trend.recolour());
        });
        addEventListener('pagehide', () => {
            const points = [...this.#byItem].map(([id, trend]) => [id, trend.points]);
            sessionStorage.setItem(place, JSON.stringify(Object.fromEntries(points)));
        });
    }

    /** A trend whose canvas is to be put into the page. */
    make(item) {
        const canvas = document.createElement('canvas');
        canvas.width = width;
        canvas.height = height;
        canvas.setAttribute('role', 'img');
        canvas.setAttribute('aria-label', `Trend of ${item.name}`);
        const trend = new Trend(item, canvas);
        trend.resume(this.#kept[item.id] ?? [], Date.now() / 1000);
        delete this.#kept[item.id];
        this.#byItem.set(item.id, trend);
        this.#byCanvas.set(canvas, trend);
        this.#observer.observe(canvas);
        return trend;
    }

    /** The moment of the values that come next. */
    set time(seconds) {
        this.#time = seconds;
    }

    clear() {
        this.#observer.disconnect();
        this.#byCanvas.forEach((trend) => trend.hide());
        this.#byCanvas.clear();
        this.#byItem.clear();
    }
}
