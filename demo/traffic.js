// The traffic of the last minutes: calculates rates from the counters of successive answers.

export const WINDOW = 5 * 60_000;
/**
 * The shortest time over which a rate is calculated, in milliseconds. A device may update its
 * counters every three seconds, as often as it is asked, so between two answers there may be no
 * update, one or two. Over this time, one update too many or too few changes the rate by a quarter.
 */
export const SPAN = 12_000;
/** Answers that are further apart than this are not joined by a line. */
const LONGEST_STEP = 90_000;

/** Rates at the times of the answers. */
export class TrafficHistory {
    /** Answers without a gap between them, from the one at which the next rate begins. */
    #samples = [];
    /** The points of the plot. There is a gap before a point that begins after the previous end. */
    points = [];

    /** Adds the counters of an answer. If a counter has decreased, it has started again. */
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
        // After a clock has been set back, there may be points in the future.
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

    /** Without a connection: changes of the counters until the next connection give no rate. */
    pause() {
        this.#samples = [];
    }

    /** The newest rates; null while there are too few answers. */
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

/** Splits points into sequences without a gap. */
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
