const shownSeconds = 120;
const keptPoints = 240;
const width = 260;
const height = 32;

/** Numbers as they are, registers by their digits, on and off as 1 and 0, texts in turn. */
function numberOf(type, value, texts) {
    if (typeof value === 'number') {
        return value;
    }
    if (typeof value === 'boolean') {
        return value ? 1 : 0;
    }
    if (type.endsWith('HEX')) {
        return Number.parseInt(value, 16);
    }
    if (!texts.has(value)) {
        texts.set(value, texts.size);
    }
    return texts.get(value);
}

function colours() {
    const style = getComputedStyle(document.documentElement);
    return [style.getPropertyValue('--trend').trim(), style.getPropertyValue('--trend-fill').trim()];
}

/** The line of one item. Values are kept always, drawn only while the line can be seen. */
class Trend {
    #item;
    #points = [];
    #texts = new Map();
    #chart = null;

    constructor(item, canvas) {
        this.#item = item;
        this.canvas = canvas;
    }

    add(time, value) {
        this.#points.push({ x: time, y: numberOf(this.#item.type, value, this.#texts) });
        while (this.#points.length > keptPoints || this.#points[0].x < time - shownSeconds - 5) {
            this.#points.shift();
        }
        if (this.#chart) {
            this.#draw(time);
        }
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

    #draw(time) {
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
        const numbers = this.#points.map((point) => point.y);
        const [low, high] = [Math.min(...numbers), Math.max(...numbers)];
        const margin = (high - low) * 0.12 || Math.abs(high) * 0.1 || 1;
        return [low - margin, high + margin];
    }

    #inWords() {
        const numbers = this.#points.map((point) => point.y);
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

/** All trends; draws those that are on the screen. */
export class Trends {
    #byCanvas = new Map();
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
    }

    /** A trend whose canvas is to be put into the page. */
    make(item) {
        const canvas = document.createElement('canvas');
        canvas.width = width;
        canvas.height = height;
        canvas.setAttribute('role', 'img');
        canvas.setAttribute('aria-label', `Trend of ${item.name}`);
        const trend = new Trend(item, canvas);
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
    }
}
