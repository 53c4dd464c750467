// The traffic of the last minutes: rates from the counters of successive answers.

export const WINDOW = 5 * 60_000;
/**
 * A rate is taken over this time at least. A device may count in steps of three seconds, which is
 * how often it is asked: from one answer to the next there are none, one or two of them. Over this
 * time, a step too many or too few makes a quarter.
 */
export const SPAN = 12_000;
/** Answers that lie further apart have no line between them. */
const LONGEST_STEP = 90_000;

/** Rates at the times of the answers. */
export class TrafficHistory {
    /** Answers of one unbroken run, from the one at which the next rate begins. */
    #samples = [];
    /** What is drawn from one time to the next; a gap is before a point that begins later. */
    points = [];

    /** Takes the counters of an answer. A counter that went back has started anew. */
    add(time, received, sent) {
        const last = this.#samples.at(-1);
        if (last !== undefined) {
            const restarted = received < last.received || sent < last.sent;
            const apart = time <= last.time || time - last.time > LONGEST_STEP;
            if (restarted || apart) {
                this.pause();
            }
        }
        const oldest = time - WINDOW;
        // A clock that was put back leaves points in the future.
        this.points = this.points.filter((point) => point.time > oldest && point.time < time);
        this.#samples.push({ time, received, sent });
        while (this.#samples.length > 1 && time - this.#samples[1].time >= SPAN) {
            this.#samples.shift();
        }
        const begin = this.#samples[0];
        if (time - begin.time >= SPAN) {
            const seconds = (time - begin.time) / 1000;
            const follows = last !== undefined && this.points.at(-1)?.time === last.time;
            this.points.push({
                from: follows ? last.time : begin.time,
                time,
                received: Number(received - begin.received) / seconds,
                sent: Number(sent - begin.sent) / seconds,
            });
        }
    }

    /** There is no connection: what the counters do until there is one again gives no rate. */
    pause() {
        this.#samples = [];
    }

    /** The newest rates; null while they are collected. */
    get now() {
        const newest = this.#samples.at(-1);
        const point = this.points.at(-1);
        return newest !== undefined && point?.time === newest.time ? point : null;
    }
}

/** The smallest of 1, 2, 5, 10 ... that is not below a rate, and at least 1 kB/s. */
export function niceMaximum(value) {
    let maximum = 1000;
    for (let i = 0; maximum < value; i += 1) {
        maximum *= i % 3 === 1 ? 2.5 : 2;
    }
    return maximum;
}

/** Runs of points without a gap. */
export function runs(points) {
    const all = [];
    for (const point of points) {
        const run = all.at(-1);
        if (run?.at(-1).time === point.from) {
            run.push(point);
        } else {
            all.push([point]);
        }
    }
    return all;
}
