// Numbers as people read them.

const UNITS = ["B", "kB", "MB", "GB", "TB", "PB", "EB"];

const number = new Intl.NumberFormat("en", { maximumSignificantDigits: 3, useGrouping: false });

/** The unit in which an amount of bytes is best told: its name and its size. */
export function unitOf(amount) {
    let power = 0;
    // 999.5 and more would be written as 1000.
    while (power < UNITS.length - 1 && amount >= 999.5 * 1000 ** power) {
        power += 1;
    }
    return { name: UNITS[power], size: 1000 ** power };
}

/** An amount of bytes, decimal units, three digits: "734 MB". */
export function bytes(amount) {
    const value = Number(amount);
    const unit = unitOf(value);
    const shown = value / unit.size;
    return `${shown >= 1000 ? Math.round(shown) : number.format(shown)} ${unit.name}`;
}

/** Bytes in a second: "1.2 MB/s". */
export function rate(perSecond) {
    return `${bytes(Math.round(perSecond))}/s`;
}

/** Seconds as the two largest parts that matter: "1 h 30 min". */
export function duration(seconds) {
    const value = Number(seconds);
    const days = Math.floor(value / 86400);
    const hours = Math.floor(value / 3600) % 24;
    const minutes = Math.floor(value / 60) % 60;
    if (days > 0) {
        return `${days} d ${hours} h`;
    }
    if (hours > 0) {
        return `${hours} h ${minutes} min`;
    }
    return minutes > 0 ? `${minutes} min ${value % 60} s` : `${value} s`;
}

/** "1 device", "2 devices". */
export function count(amount, one, many) {
    return `${amount} ${amount === 1 ? one : many}`;
}

/** A decimal text of the answer as a number of any size; null for all else. */
export function parseCount(text) {
    return /^\d{1,20}$/.test(text ?? "") ? BigInt(text) : null;
}

/** An integer of the answer, which tells some as numbers and some as texts; null for all else. */
export function parseInteger(value) {
    return /^-?\d{1,10}$/.test(String(value ?? "")) ? Number(value) : null;
}

/** Whether a text holds letters that are written from right to left. */
export function isRightToLeft(text) {
    return /[\p{Script=Arabic}\p{Script=Hebrew}\p{Script=Syriac}\p{Script=Thaana}\p{Script=Nko}]/u.test(
        text,
    );
}
