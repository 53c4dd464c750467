// The four operations of the service.

// In milliseconds. If the device hangs, the web server gives up after ten to twenty seconds.
const PATIENCE = 25_000;

/**
 * What went wrong: "gone" (no answer), "disabled" (by the carrier, or because the device does not
 * answer the service) or "refused".
 */
export class ServiceError extends Error {
    constructor(kind, message) {
        super(message);
        this.kind = kind;
    }
}

function kindOf(status) {
    if (status === 501) {
        return "disabled";
    }
    return status === 403 ? "refused" : "gone";
}

async function call(name, method) {
    const abort = new AbortController();
    const timer = setTimeout(() => abort.abort(), PATIENCE);
    try {
        const answer = await fetch(`/srv/${name}`, {
            method,
            cache: "no-store",
            credentials: "same-origin",
            redirect: "error",
            signal: abort.signal,
        });
        if (!answer.ok) {
            throw new ServiceError(kindOf(answer.status), `status ${answer.status}`);
        }
        const body = await answer.json();
        if (body === null || typeof body !== "object") {
            throw new ServiceError("gone", "no object");
        }
        return body;
    } catch (error) {
        throw error instanceof ServiceError ? error : new ServiceError("gone", error.message);
    } finally {
        clearTimeout(timer);
    }
}

/** The status data set and whether the caller is logged in. */
export async function askStatus() {
    const answer = await call("status", "GET");
    const data = answer.statusData;
    return {
        loggedIn: answer.loginStatus === 1,
        data: data !== null && typeof data === "object" ? data : {},
    };
}

/** The list of notifications; null if the service does not provide one. */
export async function askNotifications() {
    const list = (await call("notification", "GET")).notificationsList;
    return Array.isArray(list) ? list : null;
}

// Actions use POST, because browsers then send the Origin header, which the web server checks.

export function connect() {
    return call("connect", "POST");
}

export function disconnect() {
    return call("disconnect", "POST");
}
